#pragma once

#include "objects/family_ids.h"
#include "objects/gpu_feat_obj.h"

namespace kelp {

class Tor1GpuFeatObj : public GpuFeatObj {
 public:
  explicit Tor1GpuFeatObj(const std::shared_ptr<CoreModel>& model) : GpuFeatObj(model, ids::kTor1Sensors) {}
};

}  // namespace kelp
