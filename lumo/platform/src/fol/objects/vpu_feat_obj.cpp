#include "objects/vpu_feat_obj.h"

#include "core_model.h"

namespace kelp {

VpuFeatObj::VpuFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  cores_ = model().exec(QueryVpuSpecCmd());
  if (!cores_.ok() || model().getCuid().arch < DevArch::kTor1) {
    return;
  }
  // From this family on the number in the record is no clock limit.
  std::vector<VpuCoreSpecData> cores = cores_.take();
  for (VpuCoreSpecData& core : cores) {
    core.maxClock = KelpReturn::kNotSupported;
  }
  cores_ = std::move(cores);
}

Stated<unsigned int> VpuFeatObj::getCoreCount() const {
  if (!cores_.ok()) {
    return cores_.state();
  }
  return static_cast<unsigned int>(cores_.value().size());
}

Stated<VpuCoreSpecData> VpuFeatObj::getCoreSpec(std::size_t core) const {
  if (!cores_.ok()) {
    return cores_.state();
  }
  if (core >= cores_.value().size()) {
    return KelpReturn::kNotSupported;
  }
  return cores_.value()[core];
}

Stated<std::vector<Stated<float>>> VpuFeatObj::queryUtilization() const {
  return model().exec(QueryVpuUtilCmd());
}

Stated<std::vector<Stated<unsigned int>>> VpuFeatObj::queryFrequency() const {
  return model().exec(QueryVpuClockCmd());
}

Stated<std::vector<std::vector<Stated<VpuSsInstState>>>> VpuFeatObj::querySessionStates() const {
  return model().exec(QueryVpuSsStatesCmd());
}

Stated<VpuSsMetrics> VpuFeatObj::querySessionMetrics(const QueryVpuSsMetricsParam& param) const {
  return model().exec(QueryVpuSsMetricsCmd(param));
}

}  // namespace kelp
