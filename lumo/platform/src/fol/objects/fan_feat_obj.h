#pragma once

#include "board_values.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The fans of a board.
class FanFeatObj : public FeatObj<FanFeatObj> {
 public:
  explicit FanFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  virtual Stated<unsigned int> queryCount() const;
  /// Percent of the fan's maximum duty.
  virtual Stated<unsigned int> querySpeed(unsigned int index) const;
  /// Revolutions per minute.
  virtual Stated<unsigned int> queryRpm(unsigned int index) const;

 private:
  Stated<unsigned int> querySpeedIn(unsigned int index, FanUnit unit) const;
};

}  // namespace kelp
