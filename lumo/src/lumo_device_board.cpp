#include "device.h"
#include "entry_point.h"

using lumo::Device;
using lumo::with;

namespace {

constexpr unsigned kSlowestState = 15;
constexpr unsigned kMilliwattsPerWatt = 1000;

/// The board takes whole watts.
unsigned long long toWholeWatts(unsigned milliwatts) {
  return (milliwatts + kMilliwattsPerWatt / 2ULL) / kMilliwattsPerWatt * kMilliwattsPerWatt;
}

void setPowerLimit(const Device& device, unsigned milliwatts, bool persistent, LumoReturn* status) {
  const auto [minimum, maximum] = device.getPowerLimitConstraints(status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return;
  }
  const unsigned long long limit = toWholeWatts(milliwatts);
  if (limit < minimum || limit > maximum) {
    *status = LUMO_RETURN_INVALID_ARGUMENT;
    return;
  }
  device.setPowerLimit({.limit = static_cast<unsigned>(limit), .persistent = persistent}, status);
}

}  // namespace

LumoReturn lumoDeviceCountFan(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::getFanCount);
}

LumoReturn lumoDeviceGetFanSpeed(LumoDevice* device, unsigned index, unsigned* percent) {
  return lumo::getValue(device, percent, with(&Device::getFanSpeed, index));
}

LumoReturn lumoDeviceGetFanRpm(LumoDevice* device, unsigned index, unsigned* rpm) {
  return lumo::getValue(device, rpm, with(&Device::getFanRpm, index));
}

LumoReturn lumoDeviceGetPowerUsage(LumoDevice* device, unsigned* milliwatts) {
  return lumo::getValue(device, milliwatts, &Device::getPowerUsage);
}

LumoReturn lumoDeviceGetDefaultPowerLimit(LumoDevice* device, unsigned* milliwatts) {
  return lumo::getValue(device, milliwatts, &Device::getDefaultPowerLimit);
}

LumoReturn lumoDeviceGetEnforcedPowerLimit(LumoDevice* device, unsigned* milliwatts) {
  return lumo::getValue(device, milliwatts, &Device::getEnforcedPowerLimit);
}

LumoReturn lumoDeviceGetPowerLimit(LumoDevice* device, unsigned* milliwatts) {
  return lumo::getValue(device, milliwatts, &Device::getRequestedPowerLimit);
}

LumoReturn lumoDeviceGetPowerLimitConstraints(LumoDevice* device, unsigned* minimum, unsigned* maximum) {
  return lumo::getPair(device, minimum, maximum, &Device::getPowerLimitConstraints);
}

LumoReturn lumoDeviceSetPowerLimitWithPersistentOption(LumoDevice* device, unsigned milliwatts,
                                                       unsigned persistent) {
  if (persistent > 1) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(device, with(&setPowerLimit, milliwatts, persistent == 1));
}

LumoReturn lumoDeviceGetPerformanceState(LumoDevice* device, unsigned* state) {
  return lumo::getValue(device, state, &Device::getPerformanceState);
}

LumoReturn lumoDeviceSetPerformanceState(LumoDevice* device, unsigned state) {
  if (state > kSlowestState) {
    return LUMO_RETURN_INVALID_ARGUMENT;
  }
  return lumo::runOperation(device, with(&Device::setPerformanceState, state));
}

LumoReturn lumoDeviceCountDisplayInterface(LumoDevice* device, unsigned* count) {
  return lumo::getValue(device, count, &Device::getDisplayInterfaceCount);
}

LumoReturn lumoDeviceGetDisplayInterfaceSpec(LumoDevice* device, unsigned index, LumoDispIntfSpec* spec) {
  return lumo::getValue(device, spec, with(&Device::getDisplayInterfaceSpec, index));
}

LumoReturn lumoDeviceReset(LumoDevice* device) {
  return lumo::runOperation(device, &Device::reset);
}

LumoReturn lumoDeviceResetEventMessages(LumoDevice* device) {
  return lumo::runOperation(device, &Device::resetEventMessages);
}
