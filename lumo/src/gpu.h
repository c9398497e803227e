#pragma once

#include <cstdint>

#include "component.h"
#include "device.h"
#include "gpu_values.h"

namespace lumo {

/// The graphics and compute engine of a device. Shares are in percent, temperatures in degrees Celsius;
/// fractions are cut off.
class Gpu : public Component<unsigned int, Device> {
 public:
  using Component::Component;

  virtual unsigned int getUtilization(LumoReturn* status) const;
  /// Of a vGPU, as its guest sees it.
  virtual unsigned int getGuestUtilization(LumoReturn* status) const;
  virtual unsigned int getEngineUtilization(unsigned int engine, LumoReturn* status) const;
  virtual int getTemperature(LumoReturn* status) const;
  virtual int getSensorTemperature(unsigned int sensor, LumoReturn* status) const;
  /// Megahertz.
  virtual unsigned int getClock(LumoReturn* status) const;
  /// Megahertz.
  virtual unsigned int getMaxClock(LumoReturn* status) const;
  virtual int getMaxTemperature(LumoReturn* status) const;
  virtual unsigned int getMemoryControllerUtilization(LumoReturn* status) const;
  virtual void reset(LumoReturn* status) const;
  /// 0 mean over the cores, 1 busiest core.
  virtual unsigned int getCoreUtilization(unsigned int kind, LumoReturn* status) const;
  /// Shader units of the cores set in a mask.
  virtual unsigned int countCoreMpx(std::uint64_t mask, LumoReturn* status) const;
  /// Low half: how often; high half: for how many milliseconds.
  virtual std::uint64_t getThermalSlowdownStatistics(LumoReturn* status) const;
  virtual void resetHwErrorCounts(LumoReturn* status) const;

 private:
  bool isCoreMask(std::uint64_t mask, LumoReturn* status) const;
};

}  // namespace lumo
