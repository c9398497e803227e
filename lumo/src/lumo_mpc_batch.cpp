#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "capability.h"
#include "entry_point.h"
#include "handles.h"
#include "library.h"

// Division of several GPUs in one call. Every step that makes the driver's devices anew ends all handles
// and the enumeration, so that the next step begins with a fresh one. Meanwhile a GPU is known by its key,
// not by its uuid, which another one may have as well.

namespace {

/// The lowest property word of a GPU that needs no switch of its mode. sic: the whole word is compared, so
/// that a GPU with Sablink ports is never switched.
constexpr unsigned long long kNoSwitchNeeded = 1ULL << LUMO_PROPERTY_MPC_TYPE_SHIFT;

struct Division {
  unsigned configurationId;
  unsigned long long property;
};
using Divisions = std::map<std::string, Division>;

LumoReturn readDivision(LumoDevice* device, unsigned configurationId, Divisions* divisions) {
  unsigned long long property = 0;
  if (const LumoReturn status = lumoDeviceGetProperty(device, &property); status != LUMO_RETURN_SUCCESS) {
    return status;
  }
  const bool undivided =
      (property & LUMO_PROPERTY_MPC_CAPABLE) != 0 && lumo::mpcRoleOf(property) == lumo::MpcRole::kNone;
  if (!undivided && !lumo::isMpcParent(property)) {
    return LUMO_RETURN_NOT_SUPPORTED;
  }
  const std::shared_ptr<lumo::Device> object = device->object.lock();
  if (object == nullptr) {
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  divisions->insert_or_assign(object->getKey(),
                              Division{.configurationId = configurationId, .property = property});
  return LUMO_RETURN_SUCCESS;
}

/// Runs an operation on the handle of a GPU, after an enumeration where there is none.
LumoReturn runOn(LumoLibrary* library, const std::string& key,
                 const std::function<LumoReturn(LumoDevice*)>& operation) {
  return lumo::withoutThrowing([&] {
    LumoReturn status = LUMO_RETURN_SUCCESS;
    if (!library->object->initialize(&status)) {
      return status;
    }
    LumoDevice* device = nullptr;
    status = lumoLibraryInitDeviceByUuid(library, key.c_str(), &device);
    return status == LUMO_RETURN_SUCCESS ? operation(device) : status;
  });
}

void forgetDevices(LumoLibrary* library) {
  lumo::freeAllHandles();
  library->object->shutDown();
}

LumoReturn divide(LumoLibrary* library, const std::string& key, const Division& division) {
  if (division.property < kNoSwitchNeeded) {
    const LumoReturn status =
        runOn(library, key, [](LumoDevice* device) { return lumoDeviceSetMpcMode(device, 1); });
    if (status != LUMO_RETURN_SUCCESS) {
      return status;
    }
    forgetDevices(library);
  }
  const LumoReturn status = runOn(library, key, [&division](LumoDevice* device) {
    return lumoDeviceSetMpcConfiguration(device, division.configurationId);
  });
  if (status == LUMO_RETURN_SUCCESS) {
    forgetDevices(library);
  }
  return status;
}

LumoReturn divideAll(LumoLibrary* library, unsigned count, LumoDevice** devices, const unsigned* configIds) {
  Divisions divisions;
  for (unsigned i = 0; i < count; ++i) {
    const LumoReturn status = readDivision(devices[i], configIds[i], &divisions);
    if (status != LUMO_RETURN_SUCCESS) {
      return status;
    }
  }
  std::vector<std::string> touched;
  for (const auto& [key, division] : divisions) {
    touched.push_back(key);
    const LumoReturn status = divide(library, key, division);
    if (status == LUMO_RETURN_SUCCESS) {
      continue;
    }
    for (const std::string& former : touched) {
      runOn(library, former, [](LumoDevice* device) { return lumoDeviceSetMpcMode(device, 0); });
    }
    // What was enumerated on the way is no more.
    forgetDevices(library);
    return status;
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace

LumoReturn lumoLibrarySetMpcConfigurationInBatch(LumoLibrary* library, unsigned count, LumoDevice** devices,
                                                 unsigned* configIds) {
  if (library == nullptr || devices == nullptr || configIds == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::withoutThrowing([=] { return divideAll(library, count, devices, configIds); });
}
