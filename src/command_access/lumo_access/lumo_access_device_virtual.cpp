#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

LumoReturn LumoAccessDevice::vGpuGetMaxInstance(const std::string& typeId, std::uint32_t& count) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceCountMaxVirtDevices), count, modules_.device, typeId.c_str());
}

LumoReturn LumoAccessDevice::vGpuGetSupportedType(std::vector<LumoVirtType>& types) const {
  return queryLumoList(LUMO_ENTRY(lumoDeviceCountSupportedVirtTypes),
                       LUMO_ENTRY(lumoDeviceGetSupportedVirtTypes), types, modules_.device);
}

LumoReturn LumoAccessDevice::vGpuGetActiveVirtDevice(std::vector<ActiveVirtDevice>& devices) const {
  std::vector<std::string> uuids;
  LumoReturn ret =
      queryLumoTexts<LUMO_UUID_SIZE>(LUMO_ENTRY(lumoDeviceCountActiveVirtDevices),
                                     LUMO_ENTRY(lumoDeviceGetActiveVirtDeviceUuids), uuids, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;

  std::vector<ActiveVirtDevice> found;
  for (auto& uuid : uuids) {
    LumoModuleSet modules;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceInitVirtDevice), modules.device, modules_.device, uuid.c_str());
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceInitGpu), modules.gpu, modules.device);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceInitVpu), modules.vpu, modules.device);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceInitMemory), modules.memory, modules.device);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    found.push_back({std::move(uuid), modules});
  }
  devices = std::move(found);
  return ret;
}

}  // namespace tolk
