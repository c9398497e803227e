#include "objects/fan_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<unsigned int> FanFeatObj::queryCount() const {
  return model().exec(QueryFanChnlCountCmd());
}

Stated<unsigned int> FanFeatObj::querySpeed(unsigned int index) const {
  return querySpeedIn(index, FanUnit::kPercent);
}

Stated<unsigned int> FanFeatObj::queryRpm(unsigned int index) const {
  return querySpeedIn(index, FanUnit::kRpm);
}

Stated<unsigned int> FanFeatObj::querySpeedIn(unsigned int index, FanUnit unit) const {
  return model().exec(QueryFanSpeedCmd(QueryFanSpeedParam{.fanIndex = index, .unit = unit}));
}

}  // namespace kelp
