#pragma once

#include <vector>

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "sablink_values.h"

namespace kelp {

/// The Sablink ports of a device. Other devices are named by their misc number.
class SablinkFeatObj : public FeatObj<SablinkFeatObj> {
 public:
  explicit SablinkFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<unsigned int> queryLinkCount() const;
  /// Mbit/s of one link and direction.
  virtual Stated<unsigned int> queryLinkSpeed() const;
  /// Times 100.
  virtual Stated<unsigned int> queryVersion() const;
  virtual Stated<unsigned int> queryLayoutCount(unsigned int peer) const;
  virtual Stated<SablinkState> queryState(unsigned int link) const;
  virtual Stated<SablinkCapStatus> queryCapStatus(const QuerySablinkCapStatusParam& param) const;
  /// Clears all kinds of errors of a link.
  virtual Stated<int> resetErrorCounter(unsigned int link) const;
  virtual Stated<unsigned long> queryErrorCounter(const QuerySablinkErrCounterParam& param) const;
  /// Internal id of the device at the other end.
  virtual Stated<unsigned int> queryRemoteDevice(unsigned int link) const;
  /// Number of the link at the other end.
  virtual Stated<unsigned int> queryRemoteLink(unsigned int link) const;
  virtual Stated<std::vector<SablinkLayout>> queryLayouts(unsigned int peer) const;
  virtual Stated<std::vector<SablinkPath>> queryShortestPaths(unsigned int peer) const;
  virtual Stated<SablinkPerfStart> startPerf(unsigned int link) const;
  virtual Stated<SablinkPerfData> queryBandWidth(const QuerySablinkPerfDataParam& param) const;
  virtual Stated<SablinkPerfStop> stopPerf(const QuerySablinkPerfDataParam& param) const;
  virtual Stated<SablinkSerdesStatus> querySerdesStatus(unsigned int link) const;

  /// Link count, speed and version in one question.
  Stated<SablinkSpec> querySpec() const;
};

}  // namespace kelp
