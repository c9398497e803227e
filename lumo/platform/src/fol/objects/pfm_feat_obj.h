#pragma once

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "pcie_values.h"
#include "sablink_values.h"

namespace kelp {

/// The counters of a device that are started, read and stopped.
class PfmFeatObj : public FeatObj<PfmFeatObj> {
 public:
  explicit PfmFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<unsigned int> startPciePerf(const StartPciePerfParam& param) const;
  virtual Stated<PcieBandWidthData> queryPciePerfData(const QueryPciePerfDataParam& param) const;
  virtual Stated<int> stopPciePerf(const StopPciePerfParam& param) const;
  virtual Stated<unsigned long> queryPcieReplayCounter() const;
  virtual Stated<SablinkPerfStart> startSablinkPerf(const StartSablinkPerfParam& param) const;
  virtual Stated<SablinkPerfData> querySablinkPerfData(const QuerySablinkPerfDataParam& param) const;
  virtual Stated<SablinkPerfStop> stopSablinkPerf(const QuerySablinkPerfDataParam& param) const;
  virtual Stated<SablinkSerdesStatus> querySablinkSerdesStatus(const QuerySablinkStateParam& param) const;
};

}  // namespace kelp
