#include "device_object.h"

#include "kelp_log.h"
#include "model_list.h"
#include "model_manager.h"
#include "objects/queries.h"
#include "pci_sbdf.h"
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

template <class Cmd>
Stated<typename Cmd::Result> DeviceObj::query(const Cmd& cmd) const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  return model_->exec(cmd);
}

template <class Cmd>
Stated<typename Cmd::Result> DeviceObj::queryPhysical(const Cmd& cmd) const {
  return cuid_.type == DevType::kPhysical ? query(cmd) : refusal();
}

template <class T>
Stated<T> DeviceObj::getKept(Stated<T> DevDesc::*field) const {
  return isInitialized() ? desc_.*field : KelpReturn::kNotInitialized;
}

Stated<std::vector<DevCuid>> DeviceObj::getVirtDevCuids() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  const std::string sbdf = sbdfText(cuid_.sbdf);
  const Stated<DevCuidSet> found = modelManager_->getEnumerator().enumerateVirt(sbdf);
  if (!found.ok()) {
    KELP_LOG(kError) << "Failed to list virtual cuids for pcie device : " << sbdf;
    return found.state();
  }
  return std::vector<DevCuid>(found.value().begin(), found.value().end());
}

Stated<DevCuid> DeviceObj::getVirtParentCuid() const {
  return refusal();
}

Stated<std::vector<DevCuid>> DeviceObj::getMpcInstCuids() const {
  return refusal();
}

Stated<DevCuid> DeviceObj::getMpcParentCuid() const {
  return refusal();
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

Stated<unsigned long> DeviceObj::getUsableCores() const {
  return getKept(&DevDesc::kmdValue64);
}

Stated<unsigned int> DeviceObj::queryPciDeviceId() const {
  return fieldOf(query(QueryPcieInfoCmd()), &PcieInfo::deviceId);
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
  return isInitialized() ? fieldOf(infoRom_, &DeviceInfoRom::serialNumber) : KelpReturn::kNotInitialized;
}

Stated<std::string> DeviceObj::getMiscPath() const {
  return getKept(&DevDesc::miscPath);
}

Stated<std::string> DeviceObj::getCardPath() const {
  return getKept(&DevDesc::cardPath);
}

Stated<std::string> DeviceObj::getRenderPath() const {
  return getKept(&DevDesc::renderPath);
}

Stated<std::string> DeviceObj::getIonPath() const {
  return getKept(&DevDesc::ionPath);
}

Stated<std::wstring> DeviceObj::getWideName() const {
  return getKept(&DevDesc::wideName);
}

Stated<bool> DeviceObj::getMpcCapable() const {
  return getKept(&DevDesc::kmdFlagA);
}

Stated<bool> DeviceObj::getSablinkCapable() const {
  return getKept(&DevDesc::kmdFlagB);
}

Stated<unsigned int> DeviceObj::queryPowerUsage() const {
  constexpr unsigned int kBoard = 0;
  return query(QueryPowerCmd(QueryPowerUsageParam{.domain = kBoard}));
}

Stated<unsigned int> DeviceObj::queryPerfState() const {
  return queryPhysical(QueryPstateCmd());
}

Stated<int> DeviceObj::setPerfState(unsigned int state) const {
  return queryPhysical(SetPstateCmd(SetPerfStateParam{.state = state}));
}

Stated<unsigned int> DeviceObj::queryPowerLimit(PowerLimitType type) const {
  return cuid_.arch < DevArch::kTor1 ? refusal() : query(QueryPowerLimitCmd(type));
}

Stated<int> DeviceObj::setPowerLimit(const SetPowerLimitParam& param) const {
  return cuid_.arch < DevArch::kTor1 ? refusal() : queryPhysical(SetPowerLimitCmd(param));
}

Stated<int> DeviceObj::resetDevice() const {
  return queryPhysical(ResetDeviceCmd());
}

Stated<int> DeviceObj::resetDeviceEventMsgs() const {
  return queryPhysical(ResetDeviceEventMsgsCmd());
}

Stated<PcieInfo> DeviceObj::queryPcieInfo() const {
  return query(QueryPcieInfoCmd());
}

Stated<ProcessMemoryMap> DeviceObj::queryProcessMemory() const {
  return query(QueryProcMemStateCmd());
}

Stated<ProcessGpuUtilMap> DeviceObj::queryProcessGpuUtil(unsigned long lastSeen) const {
  return query(QueryProcGpuUtilCmd(QueryProcGpuUtilParam{.lastSeen = lastSeen}));
}

}  // namespace kelp
