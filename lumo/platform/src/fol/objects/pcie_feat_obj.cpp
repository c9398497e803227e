#include "objects/pcie_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<PcieInfo> PcieFeatObj::queryInfo() const {
  return model().exec(QueryPcieInfoCmd());
}

Stated<PcieSlotInfo> PcieFeatObj::querySlotInfo() const {
  return model().exec(QueryPcieSlotInfoCmd());
}

Stated<unsigned long> PcieFeatObj::queryReplayCounter() const {
  return model().exec(QueryPcieReplayCounterCmd());
}

Stated<unsigned int> PcieFeatObj::startPerf(unsigned int /*intervalMs*/) const {
  return KelpReturn::kNotSupported;
}

Stated<int> PcieFeatObj::stopPerf(unsigned int /*sessionId*/) const {
  return KelpReturn::kNotSupported;
}

Stated<PcieBandWidthData> PcieFeatObj::queryBandWidth(unsigned int /*sessionId*/) const {
  return KelpReturn::kNotSupported;
}

Stated<PcieBar2MemInfo> PcieFeatObj::queryBar2Memory() const {
  return model().exec(QueryPcieBar2MemInfoCmd());
}

}  // namespace kelp
