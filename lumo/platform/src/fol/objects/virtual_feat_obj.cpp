#include "objects/virtual_feat_obj.h"

#include <algorithm>

#include "objects/queries.h"

namespace kelp {
namespace {

/// Asks the GPU that carries a vGPU about it: a mediated device's internal id is the number of the vGPU.
template <class Cmd>
Stated<typename Cmd::Result> queryOfVgpu(const CoreModel& model) {
  return execFor({DevType::kMediated}, model, Cmd(static_cast<unsigned int>(model.getCuid().intId)));
}

}  // namespace

VirtualFeatObj::VirtualFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  if (model().getCuid().type == DevType::kMediated) {
    activeType_ = model().exec(QueryVirtTypeCmd());
  } else {
    supportedTypes_ = model().exec(QuerySupportedVirtTypesCmd());
  }
}

Stated<std::vector<std::string>> VirtualFeatObj::readActiveUuids() const {
  return model().exec(QueryActiveVirtUuidsCmd());
}

Stated<std::vector<MdevVirtType>> VirtualFeatObj::readAvailableTypes() const {
  return model().exec(QueryAvailableVirtTypesCmd());
}

Stated<unsigned int> VirtualFeatObj::getMaxInstances(const std::string& typeId) const {
  if (!supportedTypes_.ok()) {
    return supportedTypes_.state();
  }
  const auto type = std::ranges::find(supportedTypes_.value(), typeId, &MdevVirtType::id);
  if (type == supportedTypes_.value().end()) {
    return KelpReturn::kNotFound;
  }
  if (!type->maxInstances.ok()) {
    return type->maxInstances.state();
  }
  return static_cast<unsigned int>(type->maxInstances.value());
}

Stated<std::vector<MdevVirtType>> VirtualFeatObj::getSupportedTypes() const {
  return supportedTypes_;
}

Stated<unsigned int> VirtualFeatObj::readAvailableInstances(const std::string& typeId) const {
  return model().exec(QueryAvailableVirtInstancesCmd{.typeId = typeId});
}

Stated<MdevVirtType> VirtualFeatObj::getVirtType() const {
  return activeType_;
}

Stated<unsigned int> VirtualFeatObj::readVgpuId() const {
  return model().exec(QueryVgpuIdCmd());
}

Stated<unsigned int> VirtualFeatObj::readVmPid() const {
  return model().exec(QueryVmPidCmd());
}

Stated<unsigned int> VirtualFeatObj::queryGuestUtilization() const {
  return queryOfVgpu<QueryVgpuUtilCmd>(model());
}

Stated<GuestMemoryUsage> VirtualFeatObj::queryGuestMemory() const {
  return queryOfVgpu<QueryVgpuMemInfoCmd>(model());
}

Stated<VgpuOverCommitInfo> VirtualFeatObj::queryOverCommitInfo() const {
  return queryOfVgpu<QueryVgpuOverCommitCmd>(model());
}

}  // namespace kelp
