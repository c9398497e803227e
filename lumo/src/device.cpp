#include "device.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "device_object.h"
#include "gpu.h"
#include "memory.h"
#include "objects/mpc_feat_obj.h"
#include "pci_sbdf.h"
#include "pci_text.h"
#include "vpu.h"

namespace lumo {
namespace {

/// The driver's profile id carries the index of the instance above these bits.
constexpr unsigned int kProfileIdMask = 0xFF;

/// The part of the property word that says what a device is, by its type.
constexpr std::array<unsigned int, 6> kTypeBits{
    0,
    0,
    1U << LUMO_PROPERTY_MPC_TYPE_SHIFT,  // MPC parent
    2U << LUMO_PROPERTY_MPC_TYPE_SHIFT,  // MPC instance
    1U << LUMO_PROPERTY_ROLE_SHIFT,      // mediated
    2U << LUMO_PROPERTY_ROLE_SHIFT,      // guest
};

/// Fills a text field of a record, cut to the field, the rest cleared.
template <std::size_t size>
void setText(char (&field)[size], const std::string& text) {
  std::memset(field, 0, size);
  std::memcpy(field, text.data(), std::min(text.size(), size - 1));
}

/// A link of no lanes is one whose width is not known.
kelp::Stated<unsigned int> knownWidth(const kelp::Stated<unsigned int>& width) {
  return width.ok() && width.value() == 0 ? kelp::KelpReturn::kNotSupported : width;
}

}  // namespace

Device::Device(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
               const std::shared_ptr<Device>& mpcParent)
    : Resource(std::move(key)), deviceObj_(std::move(deviceObj)), mpcParent_(mpcParent) {}

std::shared_ptr<Device> Device::create(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
                                       const std::shared_ptr<Device>& mpcParent) {
  const std::shared_ptr<Device> device(new Device(std::move(key), std::move(deviceObj), mpcParent));
  device->addComponent(std::make_shared<Gpu>(0, device));
  device->addComponent(std::make_shared<Memory>(0, device));
  device->addComponent(std::make_shared<Vpu>(0, device));
  return device;
}

const kelp::DevCuid& Device::getCuid() const {
  return deviceObj_->getCuid();
}

const kelp::Features& Device::getFeatures() const {
  return deviceObj_->getFeatures();
}

kelp::Stated<std::vector<kelp::DevCuid>> Device::listMpcInstCuids() const {
  return deviceObj_->getMpcInstCuids();
}

std::string Device::readName() const {
  return deviceObj_->getDeviceName().take();
}

std::string Device::getName(LumoReturn* status) const {
  return consumeMv(deviceObj_->getDeviceName(), status);
}

std::string Device::getUuid(LumoReturn* status) const {
  *status = LUMO_RETURN_SUCCESS;
  return deviceObj_->getDesc().uuid;
}

LumoPciInfo Device::getPciInfo(LumoReturn* status) const {
  kelp::PcieInfo pcie = consumeMv(deviceObj_->queryPcieInfo(), status);
  LumoPciInfo info{};
  unsigned int subsystemDevice = 0;
  unsigned int subsystemVendor = 0;
  const auto read = [status](auto& field, auto value,
                             std::source_location where = std::source_location::current()) {
    if (*status == LUMO_RETURN_SUCCESS) {
      field = consumeMv(std::move(value), status, where);
    }
  };
  read(info.vendorId, pcie.vendorId);
  read(info.deviceId, pcie.deviceId);
  read(subsystemVendor, pcie.subsystemVendorId);
  read(subsystemDevice, pcie.subsystemDeviceId);
  read(info.maxSpeed, pcie.maxLinkSpeed);
  read(info.curSpeed, pcie.curLinkSpeed);
  read(info.maxWidth, knownWidth(pcie.maxLinkWidth));
  read(info.curWidth, knownWidth(pcie.curLinkWidth));
  read(info.maxGen, pcie.maxLinkGen);
  read(info.curGen, pcie.curLinkGen);
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  info.subsystemId = subsystemDevice << 16 | subsystemVendor;
  setText(info.sbdf, formatOutputPciStr(deviceObj_->getDesc().sbdf));
  info.domain = kelp::sbdfDomain(getCuid().sbdf);
  info.bus = kelp::sbdfBus(getCuid().sbdf);
  info.device = kelp::sbdfDevice(getCuid().sbdf);
  return info;
}

unsigned int Device::getPerformanceState(LumoReturn* status) const {
  return consumeMv(deviceObj_->queryPerfState(), status);
}

std::vector<LumoProcessMemUsage> Device::getProcessLevelMemoryInfo(LumoReturn* status) const {
  if (getType() == kelp::DevType::kMediated) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  std::vector<LumoProcessMemUsage> usages;
  for (const auto& [pid, usage] : consumeMv(deviceObj_->queryProcessMemory(), status)) {
    usages.push_back({.pid = pid,
                      .kind = usage.kind,
                      .gpuMemory = usage.gpuMemory,
                      .systemMemory = usage.systemMemory,
                      .reserved = 0});
  }
  return usages;
}

unsigned int Device::getMpcInstanceIndex(LumoReturn* status) const {
  const std::shared_ptr<Device> parent = mpcParent_.lock();
  if (parent == nullptr) {
    *status = LUMO_RETURN_NOT_FOUND;
    return 0;
  }
  const auto& feature = parent->getFeatures().mpc;
  if (feature == nullptr) {
    logMissingFeature(std::source_location::current());
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return 0;
  }
  const kelp::MpcInstList instances = consumeMv(feature->queryInstances(), status);
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
  const auto& feature = getFeatures().mpc;
  if (feature == nullptr) {
    logMissingFeature(std::source_location::current());
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  const kelp::MpcProfile profile = consumeMv(feature->queryInstanceProfile(), status);
  LumoMpcProfile record{};
  record.id = profile.id & kProfileIdMask;
  record.coreCount = profile.coreCount;
  record.memory = profile.memory;
  setText(record.name, profile.name);
  return record;
}

unsigned long long Device::getProperty(LumoReturn* status) const {
  const bool mpcCapable = consumeMv(deviceObj_->getMpcCapable(), status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  const bool sablinkCapable = consumeMv(deviceObj_->getSablinkCapable(), status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  unsigned long long property = kTypeBits.at(static_cast<std::size_t>(getType()));
  if (mpcCapable) {
    property |= LUMO_PROPERTY_MPC_CAPABLE;
  }
  if (sablinkCapable) {
    property |= LUMO_PROPERTY_SABLINK_CAPABLE;
  }
  return property;
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

std::vector<std::shared_ptr<Device>> Device::getMpcChildren(LumoReturn* status) const {
  std::vector<std::shared_ptr<Device>> children;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [key, child] : mpcChildren_) {
      children.push_back(child);
    }
  }
  std::ranges::sort(children, {}, [](const auto& child) { return child->getCuid().intId; });
  *status = LUMO_RETURN_SUCCESS;
  return children;
}

unsigned int Device::getIndex(LumoReturn* status) const {
  *status = getType() == kelp::DevType::kMediated ? LUMO_RETURN_NOT_SUPPORTED : LUMO_RETURN_SUCCESS;
  return index_;
}

}  // namespace lumo
