#pragma once

#include "objects/internal_feat_obj.h"

namespace kelp {

class Tor1InternalFeatObj : public InternalFeatObj {
 public:
  using InternalFeatObj::InternalFeatObj;

  /// State 6 past the last core.
  Stated<unsigned int> queryUnitsOfCore(unsigned int coreId) const override;
};

}  // namespace kelp
