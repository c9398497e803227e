#pragma once

#include "ecc_values.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// Error correction of the memory.
class EccFeatObj : public FeatObj<EccFeatObj> {
 public:
  explicit EccFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<EccModeInfo> queryEccMode() const;
};

}  // namespace kelp
