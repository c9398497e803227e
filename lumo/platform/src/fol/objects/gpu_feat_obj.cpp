#include "objects/gpu_feat_obj.h"

#include <algorithm>

#include "core_model.h"

namespace kelp {
namespace {

constexpr float kMaxPercent = 100.0F;

}  // namespace

Stated<GpuStatus> GpuFeatObj::queryUtilization() const {
  Stated<GpuStatus> answer = model().exec(QueryGpuStatusCmd());
  if (!answer.ok()) {
    return answer;
  }
  GpuStatus status = answer.take();
  if (status.utilization.ok()) {
    status.utilization = std::min(status.utilization.value(), kMaxPercent);
  }
  return status;
}

Stated<float> GpuFeatObj::queryTemperature() const {
  if (sensors_.empty()) {
    return KelpReturn::kNotSupported;
  }
  return model().exec(QueryTemperCmd(QueryTemperParam{.sensorId = sensors_.front()}));
}

}  // namespace kelp
