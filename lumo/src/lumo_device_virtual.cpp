#include "device.h"
#include "entry_point.h"

using lumo::Device;
using lumo::with;

LumoReturn lumoDeviceCountSupportedVirtTypes(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::countSupportedVirtualTypes);
}

LumoReturn lumoDeviceGetSupportedVirtTypes(LumoDevice* device, LumoVirtType* types, unsigned capacity) {
  return lumo::getList(device, types, capacity, &Device::getSupportedVirtualTypes);
}

LumoReturn lumoDeviceCountAvailableVirtTypes(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::countAvailableVirtualTypes);
}

LumoReturn lumoDeviceGetAvailableVirtTypes(LumoDevice* device, LumoVirtType* types, unsigned capacity) {
  return lumo::getList(device, types, capacity, &Device::getAvailableVirtualTypes);
}

LumoReturn lumoDeviceCountMaxVirtDevices(LumoDevice* device, const char* typeId, unsigned* count) {
  if (typeId == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(device, count, with(&Device::countMaxVirtualDevices, typeId));
}

LumoReturn lumoDeviceCountAvailableVirtDevices(LumoDevice* device, const char* typeId, unsigned* count) {
  if (typeId == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(device, count, with(&Device::countAvailableVirtualDevices, typeId));
}

LumoReturn lumoDeviceCountActiveVirtDevices(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::countActiveVirtualDevices);
}

LumoReturn lumoDeviceGetActiveVirtDeviceUuids(LumoDevice* device, char* uuids, unsigned width,
                                              unsigned count) {
  const auto operation = [=](const Device& object, LumoReturn* status) {
    std::memset(uuids, 0, std::size_t{width} * count);
    return object.getActiveVirtualDeviceUuids(status);
  };
  return lumo::getTexts(device, uuids, width, count, LUMO_RETURN_INSUFFICIENT_SIZE, operation);
}

LumoReturn lumoDeviceInitVirtDevice(LumoDevice* device, const char* uuid, LumoDevice** virtDevice) {
  if (uuid == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getHandle(device, virtDevice, LUMO_RETURN_NOT_FOUND,
                         with(&Device::initializeVirtualDevice, uuid));
}

LumoReturn lumoDeviceFreeVirtDevice(LumoDevice* device) {
  return lumo::ignoreRelease(device, "lumoDeviceFreeVirtDevice");
}

LumoReturn lumoDeviceGetVirtType(LumoDevice* device, LumoVirtType* type) {
  return lumo::getValue(device, type, &Device::getVirtType);
}

LumoReturn lumoDeviceGetVgpuId(LumoDevice* device, unsigned* vgpuId) {
  return lumo::getValue(device, vgpuId, &Device::getVgpuId);
}

LumoReturn lumoDeviceGetVmPid(LumoDevice* device, unsigned* pid) {
  return lumo::getValue(device, pid, &Device::getVmPid);
}

LumoReturn lumoDeviceGetVgpuOverCommitInfo(LumoDevice* device, LumoVgpuOverCommitInfo* info) {
  return lumo::getValue(device, info, &Device::getVgpuOverCommitInfo);
}
