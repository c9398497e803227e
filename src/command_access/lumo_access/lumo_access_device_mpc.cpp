#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

constexpr unsigned kMpcOff = 0;
constexpr unsigned kMpcOn = 1;

}  // namespace

LumoReturn LumoAccessDevice::enableMpcMode() {
  return callLumo(LUMO_ENTRY(lumoDeviceSetMpcMode), modules_.device, kMpcOn);
}

LumoReturn LumoAccessDevice::disableMpcMode() {
  return callLumo(LUMO_ENTRY(lumoDeviceSetMpcMode), modules_.device, kMpcOff);
}

LumoReturn LumoAccessDevice::setMpcConfiguration(std::uint32_t id) {
  return callLumo(LUMO_ENTRY(lumoDeviceSetMpcConfiguration), modules_.device, id);
}

LumoReturn LumoAccessDevice::getSupportedMpcConfiguretions(
    std::vector<LumoMpcConfiguration>& configurations) const {
  return queryLumoList(LUMO_ENTRY(lumoDeviceCountSupportedMpcConfigurations),
                       LUMO_ENTRY(lumoDeviceGetSupportedMpcConfigurations), configurations, modules_.device);
}

LumoReturn LumoAccessDevice::getSupportedMpcProfiles(std::vector<LumoMpcProfile>& profiles) const {
  return queryLumoList(LUMO_ENTRY(lumoDeviceCountSupportedMpcProfiles),
                       LUMO_ENTRY(lumoDeviceGetSupportedMpcProfiles), profiles, modules_.device);
}

LumoReturn LumoAccessDevice::getMpcInstances(std::vector<MpcInstance>& instances) const {
  std::vector<LumoDevice*> handles;
  LumoReturn ret = queryLumoList(LUMO_ENTRY(lumoDeviceCountMpcInstances),
                                 LUMO_ENTRY(lumoDeviceGetMpcInstances), handles, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  std::erase(handles, nullptr);

  std::vector<MpcInstance> found(handles.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcInstanceIndex), found[i].instanceIndex, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), found[i].deviceIndex, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcProfileInfo), found[i].profile, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
  }
  instances = std::move(found);
  return ret;
}

LumoReturn LumoAccessDevice::getParentDeviceIndex(std::uint32_t& index) const {
  LumoDevice* parent = nullptr;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcParentDevice), parent, modules_.device);
  return ret != LUMO_RETURN_SUCCESS ? ret : queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), index, parent);
}

}  // namespace tolk
