#pragma once

#include "objects/family_ids.h"
#include "objects/gpu_feat_obj.h"

namespace kelp {

class Fen2GpuFeatObj : public GpuFeatObj {
 public:
  explicit Fen2GpuFeatObj(const std::shared_ptr<CoreModel>& model)
      : GpuFeatObj(model, {.clocks = ids::kFenClocks, .sensors = ids::kFenSensors}) {}
};

}  // namespace kelp
