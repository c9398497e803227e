#include <algorithm>

#include "capability.h"
#include "entry_point.h"

using lumo::asHandles;
using lumo::Device;
using lumo::isMpcCapable;
using lumo::isMpcInstance;
using lumo::isMpcParent;
using lumo::onlyFor;
using lumo::with;

namespace {

/// An instance is part of a divided device and cannot be divided itself.
bool isMpcSwitchable(unsigned long long property) {
  return isMpcCapable(property) && !isMpcInstance(property);
}

void setSupportedConfiguration(const Device& device, unsigned id, LumoReturn* status) {
  const std::vector<LumoMpcConfiguration> supported = device.getSupportedMpcConfigurations(status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return;
  }
  if (std::ranges::find(supported, id, &LumoMpcConfiguration::id) == supported.end()) {
    *status = LUMO_RETURN_INVALID_ARGUMENT;
    return;
  }
  device.setMpcConfiguration(id, status);
}

std::vector<std::shared_ptr<Device>> findChildren(const Device& device, unsigned profileId,
                                                  LumoReturn* status) {
  std::vector<std::shared_ptr<Device>> found;
  for (const std::shared_ptr<Device>& child : device.getMpcChildren(status)) {
    const LumoMpcProfile profile = child->getMpcInstanceProfileInfo(status);
    if (*status != LUMO_RETURN_SUCCESS) {
      return {};
    }
    if (profile.id == profileId) {
      found.push_back(child);
    }
  }
  return found;
}

}  // namespace

LumoReturn lumoDeviceGetMpcMode(LumoDevice* device, unsigned* mode) {
  return lumo::getValue(device, mode, onlyFor(isMpcCapable, &Device::getMpcMode));
}

LumoReturn lumoDeviceSetMpcMode(LumoDevice* device, unsigned mode) {
  if (mode > 1) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(device, onlyFor(isMpcSwitchable, with(&Device::setMpcMode, mode)));
}

LumoReturn lumoDeviceSetMpcConfiguration(LumoDevice* device, unsigned id) {
  return lumo::runOperation(device, onlyFor(isMpcParent, with(&setSupportedConfiguration, id)));
}

LumoReturn lumoDeviceCountSupportedMpcProfiles(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, onlyFor(isMpcParent, &Device::getSupportedMpcProfiles));
}

LumoReturn lumoDeviceGetSupportedMpcProfiles(LumoDevice* device, LumoMpcProfile* profiles,
                                             unsigned capacity) {
  return lumo::getList(device, profiles, capacity, onlyFor(isMpcParent, &Device::getSupportedMpcProfiles));
}

LumoReturn lumoDeviceCountSupportedMpcConfigurations(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, onlyFor(isMpcParent, &Device::getSupportedMpcConfigurations));
}

LumoReturn lumoDeviceGetSupportedMpcConfigurations(LumoDevice* device, LumoMpcConfiguration* configurations,
                                                   unsigned capacity) {
  return lumo::getList(device, configurations, capacity,
                       onlyFor(isMpcParent, &Device::getSupportedMpcConfigurations));
}

LumoReturn lumoDeviceGetMpcConfiguration(LumoDevice* device, unsigned id,
                                         LumoMpcConfiguration* configuration) {
  return lumo::getValue(device, configuration, onlyFor(isMpcParent, with(&Device::getMpcConfiguration, id)));
}

LumoReturn lumoDeviceGetMpcConfigurationByName(LumoDevice* device, const char* name,
                                               LumoMpcConfiguration* configuration) {
  if (name == nullptr) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::getValue(device, configuration,
                        onlyFor(isMpcParent, with(&Device::getMpcConfigurationByName, name)));
}

LumoReturn lumoDeviceCountMpcInstances(LumoDevice* device, unsigned* count) {
  return lumo::getCount(device, count, onlyFor(isMpcParent, &Device::getMpcChildren));
}

LumoReturn lumoDeviceGetMpcInstances(LumoDevice* device, LumoDevice** instances, unsigned capacity) {
  return lumo::getList(device, instances, capacity,
                       onlyFor(isMpcParent, asHandles<LumoDevice>(&Device::getMpcChildren)));
}

LumoReturn lumoDeviceCountMpcInstanceByProfile(LumoDevice* device, unsigned profileId, unsigned* count) {
  return lumo::getCount(device, count, onlyFor(isMpcParent, with(&findChildren, profileId)));
}

LumoReturn lumoDeviceGetMpcInstanceByProfile(LumoDevice* device, unsigned profileId, LumoDevice** instances,
                                             unsigned capacity) {
  return lumo::getList(device, instances, capacity,
                       onlyFor(isMpcParent, asHandles<LumoDevice>(with(&findChildren, profileId))));
}

LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice* device, LumoDevice** parent) {
  return lumo::getHandle(device, parent, LUMO_RETURN_NOT_FOUND,
                         onlyFor(isMpcInstance, &Device::getMpcParent));
}

LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice* device, unsigned* index) {
  return lumo::getValue(device, index, onlyFor(isMpcInstance, &Device::getMpcInstanceIndex));
}

LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice* device, LumoMpcProfile* profile) {
  return lumo::getValue(device, profile, onlyFor(isMpcInstance, &Device::getMpcInstanceProfileInfo));
}
