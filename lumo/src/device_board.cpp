#include "device.h"
#include "device_object.h"
#include "objects/disp_feat_obj.h"
#include "objects/event_feat_obj.h"
#include "objects/fan_feat_obj.h"
#include "objects/internal_feat_obj.h"

// Fans, firmware, power, display and resets: what a device has of its board.

namespace lumo {

using kelp::DispFeatObj;
using kelp::FanFeatObj;
using kelp::Features;
using kelp::PowerLimitType;

namespace {

/// 10203 is "1.2.3".
std::string versionText(unsigned int version) {
  const unsigned int minor = version % 10000;
  return std::to_string(version / 10000) + "." + std::to_string(minor / 100) + "." +
         std::to_string(minor % 100);
}

std::string readVersion(kelp::Stated<unsigned int> version, LumoReturn* status,
                        std::source_location operation = std::source_location::current()) {
  const unsigned int number = consumeMv(std::move(version), status, operation);
  return *status == LUMO_RETURN_SUCCESS ? versionText(number) : std::string();
}

}  // namespace

unsigned int Device::getFanCount(LumoReturn* status) const {
  return ask(&Features::fan, status, &FanFeatObj::queryCount);
}

bool Device::checkFan(unsigned int index, LumoReturn* status) const {
  const unsigned int count = getFanCount(status);
  if (*status == LUMO_RETURN_SUCCESS && index >= count) {
    *status = count == 0 ? LUMO_RETURN_NOT_SUPPORTED : LUMO_RETURN_INVALID_ARGUMENT;
  }
  return *status == LUMO_RETURN_SUCCESS;
}

unsigned int Device::getFanSpeed(unsigned int index, LumoReturn* status) const {
  if (!checkFan(index, status)) {
    return 0;
  }
  return ask(&Features::fan, status, [index](const FanFeatObj& fan) { return fan.querySpeed(index); });
}

unsigned int Device::getFanRpm(unsigned int index, LumoReturn* status) const {
  if (!checkFan(index, status)) {
    return 0;
  }
  return ask(&Features::fan, status, [index](const FanFeatObj& fan) { return fan.queryRpm(index); });
}

unsigned int Device::getPowerUsage(LumoReturn* status) const {
  return consumeMv(deviceObj_->queryPowerUsage(), status);
}

std::string Device::getOvBiosVersion(LumoReturn* status) const {
  return readVersion(deviceObj_->getOvBiosVersion(), status);
}

std::string Device::getRtosVersion(LumoReturn* status) const {
  return readVersion(deviceObj_->getRtosVersion(), status);
}

std::vector<unsigned int> Device::getCoreUnits(LumoReturn* status) const {
  if (getFeatures().internal == nullptr) {
    logMissingFeature(std::source_location::current());
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return {};
  }
  const unsigned int count = getCoreCount(status);
  std::vector<unsigned int> units;
  for (unsigned int core = 0; core < count && *status == LUMO_RETURN_SUCCESS; ++core) {
    units.push_back(ask(&Features::internal, status, [core](const kelp::InternalFeatObj& feature) {
      return feature.queryUnitsOfCore(core);
    }));
  }
  return units;
}

unsigned int Device::getPerformanceState(LumoReturn* status) const {
  return consumeMv(deviceObj_->queryPerfState(), status);
}

void Device::setPerformanceState(unsigned int state, LumoReturn* status) const {
  consumeMv(deviceObj_->setPerfState(state), status);
}

unsigned int Device::getDisplayInterfaceCount(LumoReturn* status) const {
  return ask(&Features::disp, status, &DispFeatObj::getInterfaceCount);
}

LumoDispIntfSpec Device::getDisplayInterfaceSpec(unsigned int index, LumoReturn* status) const {
  const unsigned int count = getDisplayInterfaceCount(status);
  if (*status == LUMO_RETURN_SUCCESS && index >= count) {
    *status = LUMO_RETURN_INVALID_ARGUMENT;
  }
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  const kelp::DispIntfSpec spec = ask(&Features::disp, status, [index](const DispFeatObj& feature) {
    return feature.getInterfaceSpec(index);
  });
  // An unknown number is the 0 of its type: the others are worth having without it.
  return {.type = static_cast<unsigned int>(spec.type.value()),
          .hRes = spec.maxHRes.value(),
          .vRes = spec.maxVRes.value(),
          .pixelClock = spec.maxPixelClock.value(),
          .refreshRate = spec.maxRefreshRate.value()};
}

void Device::resetEventMessages(LumoReturn* status) const {
  if (!refuseMediated(status)) {
    consumeMv(deviceObj_->resetDeviceEventMsgs(), status);
  }
}

void Device::reset(LumoReturn* status) const {
  if (refuseMediated(status)) {
    return;
  }
  const auto resetAlone = [this] {
    const OtherDevicesClosed closed = closeOtherDevices();
    return deviceObj_->resetDevice();
  };
  consumeMv(resetAlone(), status);
}

unsigned int Device::getPowerLimit(PowerLimitType type, LumoReturn* status) const {
  return refuseMediated(status) ? 0 : consumeMv(deviceObj_->queryPowerLimit(type), status);
}

unsigned int Device::getDefaultPowerLimit(LumoReturn* status) const {
  return getPowerLimit(PowerLimitType::kDefault, status);
}

unsigned int Device::getEnforcedPowerLimit(LumoReturn* status) const {
  return getPowerLimit(PowerLimitType::kEnforced, status);
}

unsigned int Device::getRequestedPowerLimit(LumoReturn* status) const {
  return getPowerLimit(PowerLimitType::kRequested, status);
}

void Device::setPowerLimit(const kelp::SetPowerLimitParam& param, LumoReturn* status) const {
  consumeMv(deviceObj_->setPowerLimit(param), status);
}

std::pair<unsigned int, unsigned int> Device::getPowerLimitConstraints(LumoReturn* status) const {
  const unsigned int minimum = getPowerLimit(PowerLimitType::kMinimum, status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  return {minimum, getPowerLimit(PowerLimitType::kMaximum, status)};
}

}  // namespace lumo
