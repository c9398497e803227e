#pragma once

#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// What the maker's own tests ask of a device.
class InternalFeatObj : public FeatObj<InternalFeatObj> {
 public:
  explicit InternalFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  /// Shader units of a core, by its id.
  virtual Stated<unsigned int> queryUnitsOfCore(unsigned int coreId) const;
};

}  // namespace kelp
