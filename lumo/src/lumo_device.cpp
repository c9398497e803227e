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

LumoReturn lumoDeviceGetIndex(LumoDevice* device, unsigned* index) {
  return lumo::getValue(device, index, &Device::getIndex);
}

LumoReturn lumoDeviceGetType(LumoDevice* device, unsigned* type) {
  return lumo::getValue(device, type, lumo::asNumber<unsigned>(&Device::getDeviceType));
}

LumoReturn lumoDeviceGetIntId(LumoDevice* device, unsigned long long* intId) {
  return lumo::getValue(device, intId, &Device::getIntId);
}

LumoReturn lumoDeviceGetUUID(LumoDevice* device, char* uuid, unsigned length) {
  return lumo::getText(device, uuid, length, &Device::getUuid, LUMO_RETURN_UNKNOWN_ERROR);
}

LumoReturn lumoDeviceGetName(LumoDevice* device, char* name, unsigned length) {
  return lumo::getText(device, name, length, &Device::getName, LUMO_RETURN_UNKNOWN_ERROR);
}

LumoReturn lumoDeviceGetBrand(LumoDevice* device, unsigned* brand) {
  return lumo::getValue(device, brand, &Device::getBrand);
}

LumoReturn lumoDeviceGetSerialNumber(LumoDevice* device, char* serial, unsigned length) {
  return lumo::getText(device, serial, length, &Device::getSerialNumber);
}

LumoReturn lumoDeviceGetOvBiosVersion(LumoDevice* device, char* version, unsigned length) {
  return lumo::getText(device, version, length, &Device::getOvBiosVersion);
}

LumoReturn lumoDeviceGetRtosVersion(LumoDevice* device, char* version, unsigned length) {
  return lumo::getText(device, version, length, &Device::getRtosVersion);
}

LumoReturn lumoDeviceGetProperty(LumoDevice* device, unsigned long long* property) {
  return lumo::getValue(device, property, &Device::getProperty);
}

LumoReturn lumoDeviceGetComputeCapability(LumoDevice* device, unsigned* major, unsigned* minor) {
  return lumo::getPair(device, major, minor, &Device::getComputeCapability);
}

LumoReturn lumoDeviceGetCoreCount(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::getCoreCount);
}

LumoReturn lumoDeviceGetUsableCores(LumoDevice* device, unsigned long long* mask) {
  return lumo::getValue(device, mask, &Device::getUsableCores);
}

LumoReturn lumoDeviceCountCoreUnits(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, &Device::getCoreUnits);
}

LumoReturn lumoDeviceGetCoreUnits(LumoDevice* device, unsigned* units, unsigned capacity) {
  return lumo::getList(device, units, capacity, &Device::getCoreUnits);
}

LumoReturn lumoDeviceGetMiscPath(LumoDevice* device, char* path, unsigned length) {
  return lumo::getText(device, path, length, &Device::getMiscPath);
}

LumoReturn lumoDeviceGetCardPath(LumoDevice* device, char* path, unsigned length) {
  return lumo::getText(device, path, length, &Device::getCardPath);
}

LumoReturn lumoDeviceGetRenderPath(LumoDevice* device, char* path, unsigned length) {
  return lumo::getText(device, path, length, &Device::getRenderPath);
}

LumoReturn lumoDeviceGetIonPath(LumoDevice* device, char* path, unsigned length) {
  return lumo::getText(device, path, length, &Device::getIonPath);
}

LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, &Device::getProcessLevelMemoryInfo);
}

LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice* device, LumoProcessMemUsage* usages,
                                            unsigned capacity) {
  return lumo::getList(device, usages, capacity, &Device::getProcessLevelMemoryInfo);
}

LumoReturn lumoDeviceCountProcessGpuUtilizations(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, &Device::getProcessGpuUtilizations);
}

LumoReturn lumoDeviceGetProcessGpuUtilizations(LumoDevice* device, LumoProcessGpuUtilization* utilizations,
                                               unsigned capacity) {
  return lumo::getList(device, utilizations, capacity, &Device::getProcessGpuUtilizations);
}
