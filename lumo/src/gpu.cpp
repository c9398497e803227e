#include "gpu.h"

#include "objects/gpu_feat_obj.h"

namespace lumo {

unsigned int Gpu::getUtilization(LumoReturn* status) const {
  const auto feature = enter(&kelp::Features::gpu, status);
  if (feature == nullptr) {
    return 0;
  }
  kelp::GpuStatus gpu = consumeMv(feature->queryUtilization(), status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  return static_cast<unsigned int>(consumeMv(std::move(gpu.utilization), status));
}

int Gpu::getTemperature(LumoReturn* status) const {
  const auto feature = enter(&kelp::Features::gpu, status);
  if (feature == nullptr) {
    return 0;
  }
  return static_cast<int>(consumeMv(feature->queryTemperature(), status));
}

}  // namespace lumo
