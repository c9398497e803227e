#include "device.h"
#include "entry_point.h"
#include "gpu.h"
#include "library.h"
#include "memory.h"
#include "pci_sbdf.h"
#include "pci_text.h"
#include "process.h"
#include "system.h"
#include "vpu.h"

using lumo::Library;
using lumo::process;

lumo::Process& lumo::process() {
  // Never destroyed: a caller may give the library back while the process ends.
  static Process& instance = *new Process;
  return instance;
}

std::shared_ptr<Library> lumo::currentLibrary() {
  const std::lock_guard lock(process().mutex);
  return process().library.lock();
}

namespace {

template <class Object, class Cell>
void freeHandles() {
  lumo::HandleRegistry<Object, Cell>::instance().freeAll();
}

}  // namespace

void lumo::freeAllHandles() {
  freeHandles<System, LumoSystem>();
  freeHandles<Device, LumoDevice>();
  freeHandles<Gpu, LumoGpu>();
  freeHandles<Memory, LumoMemory>();
  freeHandles<Vpu, LumoVpu>();
}

LumoReturn lumoLibraryInit(LumoLibrary** library) {
  if (library == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::withoutThrowing([library] {
    const std::lock_guard lock(process().mutex);
    std::shared_ptr<Library> shared = process().library.lock();
    if (shared == nullptr) {
      shared = std::make_shared<Library>();
      process().library = shared;
    }
    auto cell = std::make_unique<LumoLibrary>(LumoLibrary{std::move(shared)});
    LumoReturn status = LUMO_RETURN_SUCCESS;
    *library = cell.get();
    if (cell->object->initialize(&status)) {
      // Freed by lumoLibraryShutDown.
      static_cast<void>(cell.release());
    }
    return status;
  });
}

LumoReturn lumoLibraryShutDown(LumoLibrary* library) {
  if (library == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  const std::lock_guard lock(process().mutex);
  delete library;
  if (process().library.expired()) {
    lumo::freeAllHandles();
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn lumoLibraryGetVersion(LumoLibrary* library, char* version, int length) {
  return lumo::getText(
      library, version, length, [](const Library&, LumoReturn*) { return Library::getVersion(); },
      LUMO_RETURN_UNKNOWN_ERROR);
}

LumoReturn lumoLibraryCountDevice(LumoLibrary* library, unsigned* count) {
  return lumo::getValue(library, count, [](const Library& devices, LumoReturn*) {
    return static_cast<unsigned>(devices.countDevice());
  });
}

LumoReturn lumoLibraryInitSystem(LumoLibrary* library, LumoSystem** system) {
  return lumo::getHandle(library, system, LUMO_RETURN_UNKNOWN_ERROR,
                         [](const Library& devices, LumoReturn*) { return devices.getSystem(); });
}

LumoReturn lumoLibraryInitDeviceByIndex(LumoLibrary* library, unsigned index, LumoDevice** device) {
  return lumo::getHandle(
      library, device, LUMO_RETURN_NOT_FOUND,
      [index](const Library& devices, LumoReturn*) { return devices.getDeviceByIndex(index); });
}

LumoReturn lumoLibraryInitDeviceByUuid(LumoLibrary* library, const char* uuid, LumoDevice** device) {
  if (uuid == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getHandle(library, device, LUMO_RETURN_NOT_FOUND, [uuid](const Library& devices, LumoReturn*) {
    return devices.getDeviceByUuid(uuid);
  });
}

LumoReturn lumoLibraryInitDeviceByPciSbdf(LumoLibrary* library, const char* sbdf, LumoDevice** device) {
  if (sbdf == nullptr || !lumo::checkSbdfFormat(sbdf)) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getHandle(library, device, LUMO_RETURN_NOT_FOUND, [sbdf](const Library& devices, LumoReturn*) {
    return devices.getDeviceBySbdf(kelp::pciSbdfToUint64(sbdf));
  });
}
