#include "objects/internal_feat_obj.h"

namespace kelp {

Stated<unsigned int> InternalFeatObj::queryUnitsOfCore(unsigned int /*coreId*/) const {
  return KelpReturn::kNotSupported;
}

}  // namespace kelp
