#include "vpu.h"

#include "kelp_log.h"
#include "objects/vpu_feat_obj.h"

namespace lumo {

Vpu::Vpu(unsigned int index, const std::shared_ptr<Device>& owner) : Component(index, owner) {
  const auto& feature = owner->getFeatures().vpu;
  if (feature == nullptr) {
    return;
  }
  const kelp::Stated<unsigned int> count = feature->getCoreCount();
  if (!count.ok()) {
    KELP_LOG(kError) << "Failed to get Vpu core count, st = " << count.state();
    return;
  }
  for (unsigned int id = 0; id < count.value(); ++id) {
    const kelp::Stated<kelp::VpuCoreSpecData> core = feature->getCoreSpec(id);
    if (!core.ok()) {
      KELP_LOG(kError) << "Failed to get Vpu core spec[" << id << "], st = " << core.state();
      continue;
    }
    const auto kind = static_cast<std::size_t>(core.value().kind);
    if (kind >= coreIds_.size()) {
      KELP_LOG(kError) << "Failed to get Vpu core type[" << id << "], st = " << kelp::KelpReturn::kFailure;
      continue;
    }
    coreIds_[kind].push_back(id);
  }
}

}  // namespace lumo
