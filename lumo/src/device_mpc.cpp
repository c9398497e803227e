#include <algorithm>

#include "device.h"
#include "device_object.h"
#include "objects/mpc_feat_obj.h"
#include "record_text.h"

// A device that is divided into instances, and such an instance.

namespace lumo {

using kelp::Features;
using kelp::MpcFeatObj;

namespace {

/// The driver's profile id carries the index of the instance above these bits.
constexpr unsigned int kProfileIdMask = 0xFF;

LumoMpcProfile toLumoMpcProf(const kelp::MpcProfile& profile) {
  LumoMpcProfile record{};
  record.id = profile.id & kProfileIdMask;
  record.coreCount = profile.coreCount;
  record.memory = profile.memory;
  setText(record.name, profile.name);
  return record;
}

LumoMpcConfiguration toLumoMpcConf(const kelp::MpcConfiguration& configuration) {
  LumoMpcConfiguration record{};
  record.id = configuration.id;
  const std::size_t count = std::min<std::size_t>(configuration.profileIds.size(), LUMO_MPC_MAX_INSTANCES);
  record.profileCount = static_cast<unsigned int>(count);
  setText(record.name, configuration.name);
  std::copy_n(configuration.profileIds.begin(), count, record.profileIds);
  return record;
}

template <class Record, class Value>
std::vector<Record> toRecords(const std::vector<Value>& values, Record (*toRecord)(const Value&)) {
  std::vector<Record> records(values.size());
  std::ranges::transform(values, records.begin(), toRecord);
  return records;
}

}  // namespace

unsigned int Device::getMpcMode(LumoReturn* /*status*/) const {
  return getType() == kelp::DevType::kMpcParent || getType() == kelp::DevType::kMpcInstance ? 1 : 0;
}

void Device::setMpcMode(unsigned int mode, LumoReturn* status) const {
  ask(&Features::mpc, status, [this, mode](const MpcFeatObj& feature) {
    const OtherDevicesClosed closed = closeOtherDevices();
    return feature.setMode(static_cast<kelp::MpcMode>(mode));
  });
}

void Device::setMpcConfiguration(unsigned int id, LumoReturn* status) const {
  ask(&Features::mpc, status, [this, id](const MpcFeatObj& feature) {
    const OtherDevicesClosed closed = closeOtherDevices();
    return feature.setConfiguration(id);
  });
}

unsigned int Device::getMpcInstanceIndex(LumoReturn* status) const {
  const std::shared_ptr<Device> parent = getMpcParent(status);
  if (parent == nullptr) {
    return 0;
  }
  const kelp::MpcInstList instances = parent->ask(&Features::mpc, status, &MpcFeatObj::queryInstances);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  const auto own = std::ranges::find(instances, getCuid().intId, &kelp::MpcInstance::miscId);
  if (own == instances.end()) {
    *status = LUMO_RETURN_NOT_FOUND;
    return 0;
  }
  return own->instanceId;
}

LumoMpcProfile Device::getMpcInstanceProfileInfo(LumoReturn* status) const {
  return toLumoMpcProf(ask(&Features::mpc, status, &MpcFeatObj::queryInstanceProfile));
}

LumoMpcConfiguration Device::getMpcConfiguration(unsigned int id, LumoReturn* status) const {
  return toLumoMpcConf(ask(&Features::mpc, status,
                           [id](const MpcFeatObj& feature) { return feature.getMpcConfiguration(id); }));
}

LumoMpcConfiguration Device::getMpcConfigurationByName(const std::string& name, LumoReturn* status) const {
  return toLumoMpcConf(ask(&Features::mpc, status, [&name](const MpcFeatObj& feature) {
    return feature.getMpcConfigurationByName(name);
  }));
}

std::vector<LumoMpcProfile> Device::getSupportedMpcProfiles(LumoReturn* status) const {
  return toRecords(ask(&Features::mpc, status, &MpcFeatObj::getSupportedProfiles), toLumoMpcProf);
}

std::vector<LumoMpcConfiguration> Device::getSupportedMpcConfigurations(LumoReturn* status) const {
  return toRecords(ask(&Features::mpc, status, &MpcFeatObj::getSupportedConfigurations), toLumoMpcConf);
}

std::shared_ptr<Device> Device::getMpcParent(LumoReturn* status) const {
  std::shared_ptr<Device> parent = mpcParent_.lock();
  *status = parent != nullptr ? LUMO_RETURN_SUCCESS : LUMO_RETURN_NOT_FOUND;
  return parent;
}

LumoReturn Device::addMpcChild(const std::shared_ptr<Device>& child) {
  const std::lock_guard lock(mutex_);
  return mpcChildren_.emplace(child->getKey(), child).second ? LUMO_RETURN_SUCCESS
                                                             : LUMO_RETURN_UNKNOWN_ERROR;
}

std::vector<std::shared_ptr<Device>> Device::getMpcChildren(LumoReturn* /*status*/) const {
  std::vector<std::shared_ptr<Device>> children;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [key, child] : mpcChildren_) {
      children.push_back(child);
    }
  }
  std::ranges::sort(children, {}, [](const auto& child) { return child->getCuid().intId; });
  return children;
}

}  // namespace lumo
