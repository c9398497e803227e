#include "objects/sablink_feat_obj.h"

#include "objects/queries.h"

namespace kelp {

Stated<unsigned int> SablinkFeatObj::queryLinkCount() const {
  return fieldOf(querySpec(), &SablinkSpec::linkCount);
}

Stated<unsigned int> SablinkFeatObj::queryLinkSpeed() const {
  return fieldOf(querySpec(), &SablinkSpec::linkSpeed);
}

Stated<unsigned int> SablinkFeatObj::queryVersion() const {
  return fieldOf(querySpec(), &SablinkSpec::version);
}

Stated<unsigned int> SablinkFeatObj::queryLayoutCount(unsigned int peer) const {
  const Stated<std::vector<SablinkLayout>> layouts = queryLayouts(peer);
  if (!layouts.ok()) {
    return layouts.state();
  }
  return static_cast<unsigned int>(layouts.value().size());
}

Stated<SablinkState> SablinkFeatObj::queryState(unsigned int link) const {
  return model().exec(QuerySablinkStateCmd(QuerySablinkStateParam{.link = link}));
}

Stated<SablinkCapStatus> SablinkFeatObj::queryCapStatus(const QuerySablinkCapStatusParam& param) const {
  return model().exec(QuerySablinkCapStatusCmd(param));
}

Stated<int> SablinkFeatObj::resetErrorCounter(unsigned int link) const {
  return model().exec(ResetSablinkErrCounterCmd(link));
}

Stated<unsigned long> SablinkFeatObj::queryErrorCounter(const QuerySablinkErrCounterParam& param) const {
  return model().exec(QuerySablinkErrCounterCmd(param));
}

Stated<unsigned int> SablinkFeatObj::queryRemoteDevice(unsigned int link) const {
  return fieldOf(model().exec(QuerySablinkRemoteDevCmd(QuerySablinkStateParam{.link = link})),
                 &SablinkRemoteDevInfo::miscId);
}

Stated<unsigned int> SablinkFeatObj::queryRemoteLink(unsigned int link) const {
  return fieldOf(model().exec(QuerySablinkRemoteDevCmd(QuerySablinkStateParam{.link = link})),
                 &SablinkRemoteDevInfo::link);
}

Stated<std::vector<SablinkLayout>> SablinkFeatObj::queryLayouts(unsigned int peer) const {
  return model().exec(QuerySablinkLayoutsCmd(QuerySablinkLayoutsParam{.peer = peer}));
}

Stated<std::vector<SablinkPath>> SablinkFeatObj::queryShortestPaths(unsigned int peer) const {
  return model().exec(QuerySablinkShortestPathsCmd(QuerySablinkLayoutsParam{.peer = peer}));
}

Stated<SablinkPerfStart> SablinkFeatObj::startPerf(unsigned int link) const {
  return model().exec(StartSablinkPerfCmd(StartSablinkPerfParam{.link = link}));
}

Stated<SablinkPerfData> SablinkFeatObj::queryBandWidth(const QuerySablinkPerfDataParam& param) const {
  return model().exec(QuerySablinkPerfDataCmd(param));
}

Stated<SablinkPerfStop> SablinkFeatObj::stopPerf(const QuerySablinkPerfDataParam& param) const {
  return model().exec(StopSablinkPerfCmd(param));
}

Stated<SablinkSerdesStatus> SablinkFeatObj::querySerdesStatus(unsigned int link) const {
  return model().exec(QuerySablinkSerdesStatusCmd(QuerySablinkStateParam{.link = link}));
}

Stated<SablinkSpec> SablinkFeatObj::querySpec() const {
  return model().exec(QuerySablinkSpecCmd());
}

}  // namespace kelp
