#pragma once

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "pcie_values.h"

namespace kelp {

/// A device on its bus. The traffic counters answer state 6 here: families that have them override.
class PcieFeatObj : public FeatObj<PcieFeatObj> {
 public:
  explicit PcieFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<PcieInfo> queryInfo() const;
  virtual Stated<PcieSlotInfo> querySlotInfo() const;
  /// Since boot.
  virtual Stated<unsigned long> queryReplayCounter() const;
  /// Starts a measurement of so many milliseconds an interval, and gives its number.
  virtual Stated<unsigned int> startPerf(unsigned int intervalMs) const;
  virtual Stated<int> stopPerf(unsigned int sessionId) const;
  virtual Stated<PcieBandWidthData> queryBandWidth(unsigned int sessionId) const;
  virtual Stated<PcieBar2MemInfo> queryBar2Memory() const;
};

}  // namespace kelp
