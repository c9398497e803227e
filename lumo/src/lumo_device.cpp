#include "device.h"
#include "entry_point.h"
#include "gpu.h"
#include "memory.h"
#include "vpu.h"

using lumo::Device;

namespace {

/// The first part of a kind.
template <class Component>
std::shared_ptr<Component> firstComponent(const Device& device, LumoReturn* /*status*/) {
  const auto& components = device.getComponents<Component>();
  return components.empty() ? nullptr : components.front();
}

/// The part that a device plays in MPC, as the property word says it.
enum class MpcRole : unsigned { kParent = 1, kInstance = 2 };

/// An operation for devices of one part in MPC; others do not support it.
template <MpcRole role, class Operation>
auto mpcOnly(Operation operation) {
  return [operation](const Device& device, LumoReturn* status) {
    const unsigned long long property = device.getProperty(status);
    const auto own =
        static_cast<unsigned>(property & LUMO_PROPERTY_MPC_TYPE_MASK) >> LUMO_PROPERTY_MPC_TYPE_SHIFT;
    if (*status == LUMO_RETURN_SUCCESS && own != static_cast<unsigned>(role)) {
      *status = LUMO_RETURN_NOT_SUPPORTED;
    }
    using Result = std::invoke_result_t<Operation, const Device&, LumoReturn*>;
    return *status == LUMO_RETURN_SUCCESS ? std::invoke(operation, device, status) : Result{};
  };
}

std::vector<LumoDevice*> giveMpcChildren(const Device& device, LumoReturn* status) {
  std::vector<LumoDevice*> handles;
  for (const std::shared_ptr<Device>& child : device.getMpcChildren(status)) {
    LumoDevice* handle = nullptr;
    *status = lumo::giveHandle(child, &handle, LUMO_RETURN_UNKNOWN_ERROR);
    if (*status != LUMO_RETURN_SUCCESS) {
      break;
    }
    handles.push_back(handle);
  }
  return handles;
}

}  // namespace

LumoReturn lumoDeviceInitGpu(LumoDevice* device, LumoGpu** gpu) {
  return lumo::getHandle(device, gpu, LUMO_RETURN_UNKNOWN_ERROR, firstComponent<lumo::Gpu>);
}

LumoReturn lumoDeviceInitMemory(LumoDevice* device, LumoMemory** memory) {
  return lumo::getHandle(device, memory, LUMO_RETURN_UNKNOWN_ERROR, firstComponent<lumo::Memory>);
}

LumoReturn lumoDeviceInitVpu(LumoDevice* device, LumoVpu** vpu) {
  return lumo::getHandle(device, vpu, LUMO_RETURN_UNKNOWN_ERROR, firstComponent<lumo::Vpu>);
}

LumoReturn lumoLibraryFreeDevice(LumoDevice* device) {
  return lumo::ignoreRelease(device, "lumoLibraryFreeDevice");
}

LumoReturn lumoDeviceFreeVpu(LumoVpu* vpu) {
  return lumo::ignoreRelease(vpu, "lumoDeviceFreeVpu");
}

LumoReturn lumoDeviceGetIndex(LumoDevice* device, unsigned* index) {
  return lumo::getValue(device, index, &Device::getIndex);
}

LumoReturn lumoDeviceGetUUID(LumoDevice* device, char* uuid, unsigned length) {
  return lumo::getText(device, uuid, length, &Device::getUuid, LUMO_RETURN_UNKNOWN_ERROR);
}

LumoReturn lumoDeviceGetName(LumoDevice* device, char* name, unsigned length) {
  return lumo::getText(device, name, length, &Device::getName, LUMO_RETURN_UNKNOWN_ERROR);
}

LumoReturn lumoDeviceGetProperty(LumoDevice* device, unsigned long long* property) {
  return lumo::getValue(device, property, &Device::getProperty);
}

LumoReturn lumoDeviceGetPciInfo(LumoDevice* device, LumoPciInfo* info) {
  return lumo::getValue(device, info, &Device::getPciInfo);
}

LumoReturn lumoDeviceGetPerformanceState(LumoDevice* device, unsigned* state) {
  return lumo::getValue(device, state, &Device::getPerformanceState);
}

LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, &Device::getProcessLevelMemoryInfo);
}

LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice* device, LumoProcessMemUsage* usages,
                                            unsigned capacity) {
  return lumo::getList(device, usages, capacity, &Device::getProcessLevelMemoryInfo);
}

LumoReturn lumoDeviceCountMpcInstances(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, mpcOnly<MpcRole::kParent>(&Device::getMpcChildren));
}

LumoReturn lumoDeviceGetMpcInstances(LumoDevice* device, LumoDevice** instances, unsigned capacity) {
  return lumo::getList(device, instances, capacity, mpcOnly<MpcRole::kParent>(giveMpcChildren));
}

LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice* device, LumoDevice** parent) {
  return lumo::getHandle(device, parent, LUMO_RETURN_NOT_FOUND,
                         mpcOnly<MpcRole::kInstance>(&Device::getMpcParent));
}

LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice* device, unsigned* index) {
  return lumo::getValue(device, index, mpcOnly<MpcRole::kInstance>(&Device::getMpcInstanceIndex));
}

LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice* device, LumoMpcProfile* profile) {
  return lumo::getValue(device, profile, mpcOnly<MpcRole::kInstance>(&Device::getMpcInstanceProfileInfo));
}
