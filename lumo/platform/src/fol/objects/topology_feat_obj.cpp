#include "objects/topology_feat_obj.h"

#include "core_model.h"
#include "pci_sbdf.h"
#include "pci_topology.h"

namespace kelp {

Stated<TopologyLevel> TopologyFeatObj::queryLevel(const DevCuid& other) const {
  return getPciDeviceTopology(sbdfText(model().getCuid().sbdf), sbdfText(other.sbdf));
}

Stated<std::vector<std::string>> TopologyFeatObj::queryNicDevices() const {
  return getPciNicDevicesSbdf();
}

Stated<P2pCapStatus> TopologyFeatObj::queryP2pStatus(const QueryP2pStatusParam& param) const {
  return model().exec(QueryP2pStatusCmd(param));
}

}  // namespace kelp
