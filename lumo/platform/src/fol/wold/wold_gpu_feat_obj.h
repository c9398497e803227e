#pragma once

#include "objects/family_ids.h"
#include "objects/gpu_feat_obj.h"

namespace kelp {

class WoldGpuFeatObj : public GpuFeatObj {
 public:
  explicit WoldGpuFeatObj(const std::shared_ptr<CoreModel>& model) : GpuFeatObj(model, ids::kWoldSensors) {}
};

}  // namespace kelp
