#pragma once

#include "objects/family_ids.h"
#include "objects/gpu_feat_obj.h"

namespace kelp {

/// A GPU whose driver tells how each core is built and how often it was slowed down.
class Tor1GpuFeatObj : public GpuFeatObj {
 public:
  explicit Tor1GpuFeatObj(const std::shared_ptr<CoreModel>& model)
      : GpuFeatObj(model, {.clocks = ids::kTor1Clocks, .sensors = ids::kTor1Sensors}) {}

  Stated<unsigned int> queryUnitsOfCores(std::uint64_t coreMask) const override;
  Stated<ThermalSlowdownStatistics> queryThermalSlowdown() const override;

 protected:
  std::span<const std::uint32_t> getSensorIds() const override;
};

}  // namespace kelp
