#include "objects/topology_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<TopologyLevel> TopologyFeatObj::queryLevel(const DevCuid& /*other*/) const {
  return KelpReturn::kNotSupported;
}

Stated<std::vector<std::string>> TopologyFeatObj::queryNicDevices() const {
  return KelpReturn::kNotSupported;
}

Stated<P2pCapStatus> TopologyFeatObj::queryP2pStatus(const QueryP2pStatusParam& param) const {
  return model().exec(QueryP2pStatusCmd(param));
}

}  // namespace kelp
