#pragma once

#include "objects/family_ids.h"
#include "objects/gpu_feat_obj.h"

namespace kelp {

/// The sensors of this family are asked for one at a time; the hottest of them is not told.
class WoldGpuFeatObj : public GpuFeatObj {
 public:
  explicit WoldGpuFeatObj(const std::shared_ptr<CoreModel>& model)
      : GpuFeatObj(model, {.clocks = {}, .sensors = ids::kWoldSensors}) {}

 protected:
  Stated<float> querySensor(std::uint32_t /*sensorId*/) const override { return KelpReturn::kNotSupported; }
};

}  // namespace kelp
