#include "objects/affinity_feat_obj.h"

#include "core_model.h"

namespace kelp {

Stated<std::string> AffinityFeatObj::readMemoryAffinity() const {
  return read(AffinityType::kMemory);
}

Stated<std::string> AffinityFeatObj::readCpuList() const {
  return read(AffinityType::kCpuList);
}

Stated<std::string> AffinityFeatObj::readCpuBitmask() const {
  return read(AffinityType::kCpuBitmask);
}

Stated<std::string> AffinityFeatObj::read(AffinityType type) const {
  return model().exec(QueryAffinityWithinNodeCmd{.type = type});
}

}  // namespace kelp
