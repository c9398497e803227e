#include <cmath>
#include <limits>

#include "command_access/lumo_access/lumo_access_device.h"
#include "command_access/lumo_access/lumo_call.h"

namespace tolk {

namespace {

constexpr double kMilliwattsPerWatt = 1000.0;

template <class Function>
LumoReturn queryWatts(const LumoEntry<Function>& entry, double& watts, LumoDevice* device) {
  unsigned milliwatts = 0;
  const LumoReturn ret = queryLumo(entry, milliwatts, device);
  if (ret == LUMO_RETURN_SUCCESS) watts = milliwatts / kMilliwattsPerWatt;
  return ret;
}

/// To the nearest; what 32 bits cannot hold becomes the nearest that they can.
unsigned toMilliwatts(double watts) {
  constexpr double kMost = std::numeric_limits<unsigned>::max();
  return static_cast<unsigned>(std::fmin(std::fmax(std::round(watts * kMilliwattsPerWatt), 0.0), kMost));
}

}  // namespace

LumoReturn LumoAccessDevice::getPowerUsage(double& watts) const {
  return queryWatts(LUMO_ENTRY(lumoDeviceGetPowerUsage), watts, modules_.device);
}

LumoReturn LumoAccessDevice::getCurrentPowerLimit(double& watts) const {
  return queryWatts(LUMO_ENTRY(lumoDeviceGetEnforcedPowerLimit), watts, modules_.device);
}

LumoReturn LumoAccessDevice::getRequestedPowerLimit(double& watts) const {
  return queryWatts(LUMO_ENTRY(lumoDeviceGetPowerLimit), watts, modules_.device);
}

LumoReturn LumoAccessDevice::getDefaultPowerLimit(double& watts) const {
  return queryWatts(LUMO_ENTRY(lumoDeviceGetDefaultPowerLimit), watts, modules_.device);
}

LumoReturn LumoAccessDevice::getPowerLimitConstraints(double& minimum, double& maximum) const {
  unsigned least = 0;
  unsigned most = 0;
  const LumoReturn ret =
      queryLumoPair(LUMO_ENTRY(lumoDeviceGetPowerLimitConstraints), least, most, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  minimum = least / kMilliwattsPerWatt;
  maximum = most / kMilliwattsPerWatt;
  return ret;
}

LumoReturn LumoAccessDevice::setPowerLimit(double watts, bool persistent) {
  return callLumo(LUMO_ENTRY(lumoDeviceSetPowerLimitWithPersistentOption), modules_.device,
                  toMilliwatts(watts), persistent ? 1u : 0u);
}

}  // namespace tolk
