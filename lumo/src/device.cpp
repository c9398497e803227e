#include "device.h"

#include <array>

#include "device_object.h"
#include "gpu.h"
#include "memory.h"
#include "objects/virtual_feat_obj.h"
#include "vpu.h"

// What a device is.

namespace lumo {
namespace {

/// The part of the property word that says what a device is, by its type.
constexpr std::array<unsigned int, 6> kTypeBits{
    0,
    0,
    1U << LUMO_PROPERTY_MPC_TYPE_SHIFT,  // MPC parent
    2U << LUMO_PROPERTY_MPC_TYPE_SHIFT,  // MPC instance
    1U << LUMO_PROPERTY_ROLE_SHIFT,      // mediated
    2U << LUMO_PROPERTY_ROLE_SHIFT,      // guest
};

/// Compute capability of each family, ten times the major number and the minor number.
constexpr std::array<unsigned int, 5> kComputeCapability{0, 10, 21, 22, 31};

}  // namespace

Device::Device(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
               std::shared_ptr<kelp::DeviceManager> deviceManager, const std::shared_ptr<Device>& mpcParent)
    : Resource(std::move(key)),
      perfMonitor_(
          std::make_unique<PerformanceMonitor>(static_cast<std::uint32_t>(deviceObj->getCuid().intId))),
      deviceObj_(std::move(deviceObj)),
      deviceManager_(std::move(deviceManager)),
      mpcParent_(mpcParent) {}

Device::~Device() {
  if (perfMonitor_ != nullptr && perfMonitor_->isStarted()) {
    LumoReturn status = LUMO_RETURN_SUCCESS;
    perfMonitor_->stop(&status);
  }
}

std::shared_ptr<Device> Device::create(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
                                       std::shared_ptr<kelp::DeviceManager> deviceManager,
                                       const std::shared_ptr<Device>& mpcParent) {
  struct Made final : Device {
    Made(std::string ownKey, std::shared_ptr<kelp::DeviceObj> object,
         std::shared_ptr<kelp::DeviceManager> manager, const std::shared_ptr<Device>& parent)
        : Device(std::move(ownKey), std::move(object), std::move(manager), parent) {}
  };
  // In one block with its count, so that its address is not used again while a handle remembers it.
  const std::shared_ptr<Device> device =
      std::make_shared<Made>(std::move(key), std::move(deviceObj), std::move(deviceManager), mpcParent);
  device->addComponent(std::make_shared<Gpu>(0, device));
  device->addComponent(std::make_shared<Memory>(0, device));
  device->addComponent(std::make_shared<Vpu>(0, device));
  return device;
}

const kelp::DevCuid& Device::getCuid() const {
  return deviceObj_->getCuid();
}

const kelp::DevDesc& Device::getDesc() const {
  return deviceObj_->getDesc();
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

bool Device::refuseMediated(LumoReturn* status) const {
  if (getType() == kelp::DevType::kMediated) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return true;
  }
  return false;
}

std::string Device::getName(LumoReturn* status) const {
  return consumeMv(deviceObj_->getDeviceName(), status);
}

unsigned int Device::getBrand(LumoReturn* status) const {
  return static_cast<unsigned int>(consumeMv(deviceObj_->getBrand(), status));
}

std::string Device::getMiscPath(LumoReturn* status) const {
  return consumeMv(deviceObj_->getMiscPath(), status);
}

std::string Device::getCardPath(LumoReturn* status) const {
  return consumeMv(deviceObj_->getCardPath(), status);
}

std::string Device::getRenderPath(LumoReturn* status) const {
  return consumeMv(deviceObj_->getRenderPath(), status);
}

std::string Device::getIonPath(LumoReturn* status) const {
  return consumeMv(deviceObj_->getIonPath(), status);
}

std::uint64_t Device::getIntId(LumoReturn* /*status*/) const {
  return getCuid().intId;
}

std::string Device::getSerialNumber(LumoReturn* status) const {
  return consumeMv(deviceObj_->getSerialNumber(), status);
}

unsigned int Device::getCoreCount(LumoReturn* status) const {
  return consumeMv(kelp::Stated<unsigned int>(getDesc().kmdValue32), status);
}

unsigned long Device::getUsableCores(LumoReturn* status) const {
  return consumeMv(deviceObj_->getUsableCores(), status);
}

kelp::DevType Device::getDeviceType(LumoReturn* /*status*/) const {
  return getType();
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
  const auto& virtualisation = getFeatures().virt;
  if (virtualisation != nullptr && !virtualisation->getSupportedTypes().value().empty()) {
    property |= LUMO_PROPERTY_VIRTUALIZATION_CAPABLE;
  }
  if (mpcCapable) {
    property |= LUMO_PROPERTY_MPC_CAPABLE;
  }
  if (sablinkCapable) {
    property |= LUMO_PROPERTY_SABLINK_CAPABLE;
  }
  return property;
}

std::pair<unsigned int, unsigned int> Device::getComputeCapability(LumoReturn* status) const {
  const auto arch = static_cast<std::size_t>(getCuid().arch);
  const unsigned int value = arch < kComputeCapability.size() ? kComputeCapability[arch] : 0;
  if (refuseMediated(status) || value == 0) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  return {value / 10, value % 10};
}

std::string Device::getUuid(LumoReturn* /*status*/) const {
  return getDesc().uuid;
}

unsigned int Device::getIndex(LumoReturn* status) const {
  refuseMediated(status);
  return index_;
}

unsigned long long Device::getSupportedEventTypes(LumoReturn* /*status*/) const {
  return getFeatures().event != nullptr ? LUMO_EVENT_XID : 0;
}

}  // namespace lumo
