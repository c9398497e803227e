#pragma once

#include <cstdint>
#include <span>

#include "gpu_values.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The graphics and compute engine of a device.
class GpuFeatObj : public FeatObj<GpuFeatObj> {
 public:
  explicit GpuFeatObj(const std::shared_ptr<CoreModel>& model) : GpuFeatObj(model, {}) {}

  /// How busy the GPU is. The utilization is at most 100, whatever the driver says.
  virtual Stated<GpuStatus> queryUtilization() const;
  /// Degrees Celsius; state 6 where the family has no known sensor.
  virtual Stated<float> queryTemperature() const;

 protected:
  /// `sensors` are the family's temperature sensors, the one that is shown first.
  GpuFeatObj(const std::shared_ptr<CoreModel>& model, std::span<const std::uint32_t> sensors)
      : FeatObj(model), sensors_(sensors) {}

 private:
  std::span<const std::uint32_t> sensors_;
};

}  // namespace kelp
