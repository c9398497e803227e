#include "objects/mpc_feat_obj.h"

#include "core_model.h"

namespace kelp {

MpcFeatObj::MpcFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  if (model().getCuid().type == DevType::kMpcParent) {
    profiles_ = model().exec(QueryMpcProfListCmd());
    configurations_ = model().exec(QueryMpcConfListCmd());
  }
}

Stated<MpcInstList> MpcFeatObj::queryInstances() const {
  return model().exec(QueryMpcInstListCmd());
}

Stated<MpcProfile> MpcFeatObj::queryInstanceProfile() const {
  if (model().getCuid().type != DevType::kMpcInstance) {
    return KelpReturn::kNotSupported;
  }
  return model().exec(QueryMpcProfCmd());
}

}  // namespace kelp
