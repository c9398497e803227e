#pragma once

#include "ecc_values.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// Error correction of the memory.
class EccFeatObj : public FeatObj<EccFeatObj> {
 public:
  explicit EccFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<EccPageRetirementCount> queryRetiredPagesCount() const;
  /// One page of a cause, by its place from 0.
  virtual Stated<EccPageRetirementInfo> queryRetiredPage(const QueryEccPageRetirementInfoParam& param) const;
  /// One page that waits for the next reset, by its place from 0; its `count` tells how many wait.
  virtual Stated<EccPendingErrorInfo> queryPendingPage(const QueryEccPendingErrorInfoParam& param) const;
  virtual Stated<EccModeInfo> queryEccMode() const;
  /// Takes effect with the next reset.
  virtual Stated<int> setEccMode(EccMode mode) const;
  virtual Stated<unsigned long long> queryErrors(const QueryEccErrorsParam& param) const;
  virtual Stated<int> clearErrors(EccCounterType type) const;
};

}  // namespace kelp
