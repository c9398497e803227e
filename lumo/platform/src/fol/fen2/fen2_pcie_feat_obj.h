#pragma once

#include "objects/pcie_feat_obj.h"

namespace kelp {

/// A device that measures its traffic. Named after the first family that needed it; Fen1 and Tor1
/// share it.
class Fen2PcieFeatObj : public PcieFeatObj {
 public:
  using PcieFeatObj::PcieFeatObj;

  Stated<unsigned int> startPerf(unsigned int intervalMs) const override;
  Stated<int> stopPerf(unsigned int sessionId) const override;
  Stated<PcieBandWidthData> queryBandWidth(unsigned int sessionId) const override;
};

}  // namespace kelp
