#include "device_manager.h"

#include <algorithm>

#include "device_object.h"
#include "fen1/fen1_device_factory.h"
#include "fen2/fen2_device_factory.h"
#include "kelp_log.h"
#include "model_manager.h"
#include "pci_topology.h"
#include "tor1/tor1_device_factory.h"
#include "wold/wold_device_factory.h"

namespace kelp {
namespace {

template <class Factory>
Stated<std::shared_ptr<DeviceObj>> createWith(const DevCuid& cuid,
                                              std::shared_ptr<ModelManager> modelManager) {
  return Factory().createDevice(cuid, std::move(modelManager));
}

struct FamilyRow {
  DevArch arch;
  decltype(&createWith<WoldDeviceFactory>) createDevice;
};

constexpr FamilyRow kFamilies[] = {
    {DevArch::kWold, createWith<WoldDeviceFactory>},
    {DevArch::kFen1, createWith<Fen1DeviceFactory>},
    {DevArch::kFen2, createWith<Fen2DeviceFactory>},
    {DevArch::kTor1, createWith<Tor1DeviceFactory>},
};

}  // namespace

DeviceManager::DeviceManager() : modelManager_(std::make_shared<ModelManager>()) {}

DeviceManager::~DeviceManager() = default;

Done DeviceManager::init() {
  initialized_ = true;
  return KelpReturn::kSuccess;
}

Stated<std::vector<DevCuid>> DeviceManager::listDevice() {
  if (!initialized_) {
    return KelpReturn::kNotInitialized;
  }
  const Stated<DevCuidSet> found = modelManager_->getEnumerator().enumeratePcie();
  if (!found.ok()) {
    KELP_LOG(kError) << "Failed to list pcie cuids!";
    return found.state();
  }
  std::vector<DevCuid> cuids(found.value().begin(), found.value().end());
  std::ranges::sort(cuids, {}, &DevCuid::intId);
  return cuids;
}

Stated<std::shared_ptr<DeviceObj>> DeviceManager::getDevice(const DevCuid& cuid) {
  if (!initialized_) {
    return KelpReturn::kNotInitialized;
  }
  const std::lock_guard lock(mutex_);
  if (const auto found = devices_.find(cuid); found != devices_.end()) {
    return found->second;
  }
  const auto family = std::ranges::find(kFamilies, cuid.arch, &FamilyRow::arch);
  if (family == std::end(kFamilies)) {
    KELP_LOG(kError) << "Unsupported arch : " << cuid.arch;
    return KelpReturn::kFailure;
  }
  Stated<std::shared_ptr<DeviceObj>> device = family->createDevice(cuid, modelManager_);
  if (!device.ok()) {
    KELP_LOG(kError) << "Failed to create device : " << toText(cuid);
    return device.state();
  }
  const Done done = device.value()->init();
  if (!done.ok()) {
    KELP_LOG(kError) << "Failed to initialize device : " << toText(cuid);
    return done.state();
  }
  devices_.emplace(cuid, device.value());
  return device;
}

Stated<std::string> DeviceManager::getDriverVersion() {
  return modelManager_->getEnvironment().getDriverVersion();
}

Stated<DriverMode> DeviceManager::getDriverMode() {
  return modelManager_->getEnvironment().getDriverMode();
}

Stated<std::string> DeviceManager::getProcessName(std::uint32_t pid) {
  return modelManager_->getEnvironment().getProcessName(pid);
}

Stated<TopologyLevel> DeviceManager::queryTopologyLevel(const std::string& sbdfA, const std::string& sbdfB) {
  return getPciDeviceTopology(sbdfA, sbdfB);
}

Stated<std::vector<std::string>> DeviceManager::queryNicDevices() {
  return getPciNicDevicesSbdf();
}

void DeviceManager::closeOtherDevices(const DevCuid& target) {
  modelManager_->closeOtherModelFile(target);
}

void DeviceManager::reopenOtherDevices(const DevCuid& target) {
  modelManager_->reinitOtherModelFile(target);
}

}  // namespace kelp
