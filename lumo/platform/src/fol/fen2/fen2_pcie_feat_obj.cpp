#include "fen2/fen2_pcie_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<unsigned int> Fen2PcieFeatObj::startPerf(unsigned int intervalMs) const {
  return model().exec(StartPciePerfCmd(StartPciePerfParam{.interval = intervalMs}));
}

Stated<int> Fen2PcieFeatObj::stopPerf(unsigned int sessionId) const {
  return model().exec(StopPciePerfCmd(StopPciePerfParam{.sessionId = sessionId}));
}

Stated<PcieBandWidthData> Fen2PcieFeatObj::queryBandWidth(unsigned int sessionId) const {
  return model().exec(QueryPciePerfDataCmd(QueryPciePerfDataParam{.sessionId = sessionId}));
}

}  // namespace kelp
