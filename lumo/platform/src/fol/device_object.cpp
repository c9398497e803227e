#include "device_object.h"

#include "core_model.h"
#include "kelp_log.h"
#include "model_list.h"
#include "model_manager.h"
#include "target_environment.h"

namespace kelp {
namespace {

/// What devices are called in an environment that has names of its own, whatever the driver says.
Stated<std::string> targetEnvironmentName(DevArch arch) {
  if (arch == DevArch::kTor1) {
    return std::string("D1000");
  }
  KELP_LOG(kError) << "device arch " << arch << " not supported on this env";
  return KelpReturn::kNotSupported;
}

}  // namespace

DeviceObj::DeviceObj(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager, FeatureRow features)
    : modelManager_(std::move(modelManager)), cuid_(cuid), featureRow_(features) {}

Done DeviceObj::init() {
  const std::lock_guard lock(initMutex_);
  if (initialized_) {
    return KelpReturn::kSuccess;
  }
  Stated<std::shared_ptr<CoreModel>> model = modelManager_->getModel(cuid_);
  if (!model.ok()) {
    KELP_LOG(kError) << "get device model failed. error code is " << model.state();
    return model.state();
  }
  model_ = model.take();
  const Stated<DevDesc>& desc = model_->getDesc();
  if (!desc.ok()) {
    KELP_LOG(kError) << "get device description failed. error code is " << desc.state();
    return desc.state();
  }
  desc_ = desc.value();
  if (cuid_.type != DevType::kGuest) {
    firmware_ = model_->exec(QuerySmcFwVersionCmd());
    infoRom_ = model_->exec(QueryInfoRomCmd());
  }
  for (const FeatureMaker make : featureRow_) {
    make(features_, model_);
  }
  initialized_ = true;
  return KelpReturn::kSuccess;
}

Stated<std::vector<DevCuid>> DeviceObj::getMpcInstCuids() const {
  return isInitialized() ? KelpReturn::kNotSupported : KelpReturn::kNotInitialized;
}

Stated<DevCuid> DeviceObj::getMpcParentCuid() const {
  return isInitialized() ? KelpReturn::kNotSupported : KelpReturn::kNotInitialized;
}

Stated<DevBrand> DeviceObj::getBrand() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  if (!infoRom_.ok()) {
    return infoRom_.state();
  }
  return infoRom_.value().brand == "OVT" ? DevBrand::kOvt : DevBrand::kUnknown;
}

Stated<unsigned int> DeviceObj::getFirmwareVersion(const char* component) const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  if (!firmware_.ok()) {
    return firmware_.state();
  }
  const auto found = firmware_.value().find(component);
  return found == firmware_.value().end() ? KelpReturn::kFailure : found->second;
}

template <class Cmd>
Stated<typename Cmd::Result> DeviceObj::query(const Cmd& cmd) const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  return model_->exec(cmd);
}

Stated<PcieInfo> DeviceObj::queryPcieInfo() const {
  return query(QueryPcieInfoCmd());
}

Stated<unsigned int> DeviceObj::queryPciDeviceId() const {
  const Stated<PcieInfo> info = queryPcieInfo();
  if (!info.ok()) {
    return info.state();
  }
  return info.value().deviceId;
}

Stated<std::string> DeviceObj::getDeviceName() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  Stated<std::string> name = model_->exec(QueryDevNameCmd());
  if (name.ok() && !name.value().empty()) {
    KELP_LOG(kInfo) << "get device name " << name.value() << " from kmd";
    if (readIsTargetEnvironment()) {
      return targetEnvironmentName(cuid_.arch);
    }
    KELP_LOG(kInfo) << "not the target environment";
    return name;
  }
  KELP_LOG(kInfo) << "get device name from kmd failed, use local list for a try";
  const Stated<unsigned int> deviceId = queryPciDeviceId();
  if (!deviceId.ok()) {
    return KelpReturn::kFailure;
  }
  KELP_LOG(kInfo) << "device id is " << deviceId.value();
  return getListedName(deviceId.value());
}

Stated<std::string> DeviceObj::getListedName(unsigned int deviceId) {
  // A family may have one row for all ids that no other row names, its low eight bits set.
  constexpr unsigned int kCatchAllBits = 0xFF;
  for (const unsigned int id : {deviceId, deviceId | kCatchAllBits}) {
    if (const ModelRow* row = findModel(id); row != nullptr) {
      return std::string(row->name);
    }
  }
  return KelpReturn::kNotFound;
}

Stated<std::string> DeviceObj::getSerialNumber() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  if (!infoRom_.ok()) {
    return infoRom_.state();
  }
  return infoRom_.value().serialNumber;
}

Stated<bool> DeviceObj::getMpcCapable() const {
  return isInitialized() ? desc_.kmdFlagA : KelpReturn::kNotInitialized;
}

Stated<bool> DeviceObj::getSablinkCapable() const {
  return isInitialized() ? desc_.kmdFlagB : KelpReturn::kNotInitialized;
}

Stated<unsigned int> DeviceObj::queryPerfState() const {
  if (isInitialized() && cuid_.type != DevType::kPhysical) {
    return KelpReturn::kNotSupported;
  }
  return query(QueryPstateCmd());
}

Stated<std::map<std::uint32_t, ProcessMemoryUsage>> DeviceObj::queryProcessMemory() const {
  return query(QueryProcMemStateCmd());
}

}  // namespace kelp
