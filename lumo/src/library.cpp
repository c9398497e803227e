#include "library.h"

#include <algorithm>
#include <tuple>

#include "device.h"
#include "device_manager.h"
#include "device_object.h"
#include "handles.h"
#include "kelp_log.h"
#include "pci_sbdf.h"
#include "system.h"

namespace lumo {
namespace {

/// Logs the state of a failed platform call. The code for it.
LumoReturn failed(kelp::KelpReturn state) {
  KELP_LOG(kError) << "Mv error, state = " << state;
  return statusOf(state);
}

/// `what` goes up to the address.
void warnSkipped(const char* what, const kelp::DevCuid& cuid, LumoReturn status) {
  KELP_LOG(kWarn) << what << kelp::sbdfText(cuid.sbdf) << ", intId: " << cuid.intId << "] error: " << status;
}

}  // namespace

Library::~Library() {
  shutDown();
}

bool Library::initialize(LumoReturn* status) {
  *status = LUMO_RETURN_SUCCESS;
  if (initialized_) {
    return true;
  }
  const std::lock_guard lock(mutex_);
  if (initialized_) {
    return true;
  }
  deviceManager_ = std::make_shared<kelp::DeviceManager>();
  system_ = std::make_shared<System>(deviceManager_);
  if (const kelp::Done done = deviceManager_->init(); !done.ok()) {
    *status = failed(done.state());
    return false;
  }
  devices_.clear();
  keyOfSbdf_.clear();
  keyOfIntId_.clear();
  order_.clear();
  const kelp::Stated<std::vector<kelp::DevCuid>> cuids = deviceManager_->listDevice();
  if (!cuids.ok()) {
    *status = failed(cuids.state());
    return false;
  }
  for (const kelp::DevCuid& cuid : cuids.value()) {
    const std::shared_ptr<Device> device = createDevice(cuid, status, nullptr);
    if (device == nullptr) {
      warnSkipped("warn: createDevice[sbdf: ", cuid, *status);
    } else if (cuid.type == kelp::DevType::kMpcParent && !createMpcInstances(device, status)) {
      return false;
    }
  }
  sortDevices();
  *status = LUMO_RETURN_SUCCESS;
  initialized_ = true;
  return true;
}

bool Library::createMpcInstances(const std::shared_ptr<Device>& parent, LumoReturn* status) {
  const kelp::Stated<std::vector<kelp::DevCuid>> cuids = parent->listMpcInstCuids();
  if (!cuids.ok()) {
    *status = failed(cuids.state());
    return false;
  }
  for (const kelp::DevCuid& cuid : cuids.value()) {
    const std::shared_ptr<Device> child = createDevice(cuid, status, parent);
    if (child == nullptr) {
      warnSkipped("warn: mpc, createDevice[sbdf: ", cuid, *status);
      continue;
    }
    const LumoReturn added = parent->addMpcChild(child);
    if (added != LUMO_RETURN_SUCCESS) {
      warnSkipped("warn: mpc, addMpciChild[sbdf: ", cuid, added);
    }
  }
  return true;
}

std::shared_ptr<Device> Library::createDevice(const kelp::DevCuid& cuid, LumoReturn* status,
                                              const std::shared_ptr<Device>& mpcParent) {
  kelp::Stated<std::shared_ptr<kelp::DeviceObj>> deviceObj = deviceManager_->getDevice(cuid);
  if (!deviceObj.ok()) {
    *status = failed(deviceObj.state());
    return nullptr;
  }
  const kelp::DevDesc& desc = deviceObj.value()->getDesc();
  const std::string key = makeKey(desc.uuid, desc.sbdf, cuid.intId);
  keyOfSbdf_.emplace(kelp::pciSbdfToUint64(desc.sbdf), key);
  keyOfIntId_.emplace(cuid.intId, key);
  std::shared_ptr<Device> device = Device::create(key, deviceObj.take(), deviceManager_, mpcParent);
  devices_.emplace(key, device);
  order_.push_back(key);
  *status = LUMO_RETURN_SUCCESS;
  return device;
}

std::string Library::makeKey(const std::string& uuid, const std::string& sbdf, std::uint64_t intId) const {
  if (!uuid.empty() && !devices_.contains(uuid)) {
    return uuid;
  }
  return devices_.contains(sbdf) ? sbdf + "/" + std::to_string(intId) : sbdf;
}

void Library::sortDevices() {
  std::ranges::sort(order_, {}, [this](const std::string& key) {
    const kelp::DevCuid& cuid = devices_.at(key)->getCuid();
    return std::tuple(cuid.sbdf, cuid.intId);
  });
  for (unsigned int index = 0; index < order_.size(); ++index) {
    devices_.at(order_[index])->setIndex(index);
  }
}

void Library::shutDown() {
  initialized_ = false;
  const std::lock_guard lock(mutex_);
  devices_.clear();
  keyOfSbdf_.clear();
  keyOfIntId_.clear();
  order_.clear();
  system_.reset();
  deviceManager_.reset();
  events_.clear();
  samples_.clear();
}

std::string Library::getVersion() {
  return LUMO_VERSION_TEXT;
}

std::size_t Library::countDevice() const {
  const std::lock_guard lock(mutex_);
  return order_.size();
}

std::shared_ptr<System> Library::getSystem() const {
  const std::lock_guard lock(mutex_);
  return system_;
}

std::shared_ptr<Device> Library::getDeviceByIndex(unsigned int index) const {
  const std::lock_guard lock(mutex_);
  return index < order_.size() ? devices_.at(order_[index]) : nullptr;
}

std::shared_ptr<Device> Library::getDeviceByUuid(const std::string& uuid) const {
  const std::lock_guard lock(mutex_);
  const auto found = devices_.find(uuid);
  return found == devices_.end() ? nullptr : found->second;
}

std::shared_ptr<Device> Library::getDeviceBySbdf(std::uint64_t sbdf) const {
  const std::lock_guard lock(mutex_);
  const auto found = keyOfSbdf_.find(sbdf);
  return found == keyOfSbdf_.end() ? nullptr : devices_.at(found->second);
}

std::shared_ptr<Device> Library::getDeviceByIntId(std::uint64_t intId) const {
  const std::lock_guard lock(mutex_);
  const auto found = keyOfIntId_.find(intId);
  return found == keyOfIntId_.end() ? nullptr : devices_.at(found->second);
}

std::vector<std::shared_ptr<Device>> Library::getDevices() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<Device>> devices;
  for (const std::string& key : order_) {
    devices.push_back(devices_.at(key));
  }
  return devices;
}

}  // namespace lumo
