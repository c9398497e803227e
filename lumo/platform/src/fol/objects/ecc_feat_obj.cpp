#include "objects/ecc_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<EccPageRetirementCount> EccFeatObj::queryRetiredPagesCount() const {
  return model().exec(QueryEccRetiredPagesCntCmd());
}

Stated<EccPageRetirementInfo> EccFeatObj::queryRetiredPage(
    const QueryEccPageRetirementInfoParam& param) const {
  return model().exec(QueryEccRetiredPagesInfoCmd(param));
}

Stated<EccPendingErrorInfo> EccFeatObj::queryPendingPage(const QueryEccPendingErrorInfoParam& param) const {
  return model().exec(QueryEccRetiredPagesPendingInfoCmd(param));
}

Stated<EccModeInfo> EccFeatObj::queryEccMode() const {
  return model().exec(QueryEccModeCmd());
}

Stated<int> EccFeatObj::setEccMode(EccMode mode) const {
  return model().exec(SetEccModeCmd(mode));
}

Stated<unsigned long long> EccFeatObj::queryErrors(const QueryEccErrorsParam& param) const {
  return model().exec(QueryEccErrCmd(param));
}

Stated<int> EccFeatObj::clearErrors(EccCounterType type) const {
  return model().exec(ClearEccErrCmd(type));
}

}  // namespace kelp
