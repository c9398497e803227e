#pragma once

#include <string>
#include <vector>

#include "dev_cuid.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "topology_values.h"

namespace kelp {

/// Where a device sits among the others.
class TopologyFeatObj : public FeatObj<TopologyFeatObj> {
 public:
  explicit TopologyFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<TopologyLevel> queryLevel(const DevCuid& other) const;
  /// PCI addresses of the host's network adapters.
  virtual Stated<std::vector<std::string>> queryNicDevices() const;
  virtual Stated<P2pCapStatus> queryP2pStatus(const QueryP2pStatusParam& param) const;
};

}  // namespace kelp
