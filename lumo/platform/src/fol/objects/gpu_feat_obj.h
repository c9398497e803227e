#pragma once

#include <cstdint>
#include <span>

#include "gpu_values.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// How a family's driver numbers clocks and sensors, the one that is shown first.
struct GpuIds {
  std::span<const std::uint32_t> clocks;
  std::span<const std::uint32_t> sensors;
};

/// The graphics and compute engine of a device.
class GpuFeatObj : public FeatObj<GpuFeatObj> {
 public:
  explicit GpuFeatObj(const std::shared_ptr<CoreModel>& model) : GpuFeatObj(model, {}) {}

  /// How busy the GPU is. The utilization is at most 100, whatever the driver says.
  virtual Stated<GpuStatus> queryUtilization() const;
  /// Percent: 0 graphics, 1 compute, 2 copy, 3 blit.
  virtual Stated<float> queryEngineUtilization(unsigned int engine) const;
  /// Degrees Celsius; state 6 where the family has no known sensor.
  virtual Stated<float> queryTemperature() const;
  /// Degrees Celsius of the family's first (0) or second (1) sensor.
  virtual Stated<float> querySensorTemperature(unsigned int selector) const;
  /// Degrees Celsius of the hottest sensor.
  virtual Stated<float> queryMaxTemperature() const;
  /// Hertz of the fastest cluster.
  virtual Stated<unsigned long> queryClock() const;
  /// Hertz.
  virtual Stated<unsigned long> queryMaxClock() const;
  /// Percent, as a guest on this GPU sees it.
  virtual Stated<unsigned int> queryGuestUtilization() const;
  /// Percent, of the memory controller.
  virtual Stated<float> queryMemoryBusy() const;
  /// Percent, mean over the cores.
  virtual Stated<float> queryCoreAverage() const;
  /// Percent, of the busiest core.
  virtual Stated<float> queryCoreMax() const;
  /// Shader units of the cores set in the mask.
  virtual Stated<unsigned int> queryUnitsOfCores(std::uint64_t coreMask) const;
  virtual Stated<int> reset() const;
  virtual Stated<int> resetHwErrorCounts() const;
  virtual Stated<ThermalSlowdownStatistics> queryThermalSlowdown() const;

 protected:
  GpuFeatObj(const std::shared_ptr<CoreModel>& model, const GpuIds& ids) : FeatObj(model), ids_(ids) {}

  virtual std::span<const std::uint32_t> getClockIds() const;
  virtual std::span<const std::uint32_t> getSensorIds() const;
  /// Degrees Celsius.
  virtual Stated<float> querySensor(std::uint32_t sensorId) const;

 private:
  GpuIds ids_;
};

}  // namespace kelp
