#pragma once

#include "objects/feat_obj.h"

namespace kelp {

/// Says that a guest device has a display setting; there is nothing to ask of it.
class DispSettingFeatObj : public FeatObj<DispSettingFeatObj> {
 public:
  explicit DispSettingFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}
};

}  // namespace kelp
