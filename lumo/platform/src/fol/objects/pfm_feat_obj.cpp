#include "objects/pfm_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<unsigned int> PfmFeatObj::startPciePerf(const StartPciePerfParam& param) const {
  return model().exec(StartPciePerfCmd(param));
}

Stated<PcieBandWidthData> PfmFeatObj::queryPciePerfData(const QueryPciePerfDataParam& param) const {
  return model().exec(QueryPciePerfDataCmd(param));
}

Stated<int> PfmFeatObj::stopPciePerf(const StopPciePerfParam& param) const {
  return model().exec(StopPciePerfCmd(param));
}

Stated<unsigned long> PfmFeatObj::queryPcieReplayCounter() const {
  return model().exec(QueryPcieReplayCounterCmd());
}

Stated<SablinkPerfStart> PfmFeatObj::startSablinkPerf(const StartSablinkPerfParam& param) const {
  return model().exec(StartSablinkPerfCmd(param));
}

Stated<SablinkPerfData> PfmFeatObj::querySablinkPerfData(const QuerySablinkPerfDataParam& param) const {
  return model().exec(QuerySablinkPerfDataCmd(param));
}

Stated<SablinkPerfStop> PfmFeatObj::stopSablinkPerf(const QuerySablinkPerfDataParam& param) const {
  return model().exec(StopSablinkPerfCmd(param));
}

Stated<SablinkSerdesStatus> PfmFeatObj::querySablinkSerdesStatus(const QuerySablinkStateParam& param) const {
  return model().exec(QuerySablinkSerdesStatusCmd(param));
}

}  // namespace kelp
