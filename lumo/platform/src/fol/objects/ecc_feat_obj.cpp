#include "objects/ecc_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<EccModeInfo> EccFeatObj::queryEccMode() const {
  return model().exec(QueryEccModeCmd());
}

}  // namespace kelp
