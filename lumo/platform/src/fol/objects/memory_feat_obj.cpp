#include "objects/memory_feat_obj.h"

#include <algorithm>

#include "core_model.h"

namespace kelp {

MemoryFeatObj::MemoryFeatObj(const std::shared_ptr<CoreModel>& coreModel) : FeatObj(coreModel) {
  Stated<MemorySpec> answer = model().exec(QueryDdrCapCmd());
  if (!answer.ok()) {
    channelCount_ = answer.state();
    channelWidth_ = answer.state();
    return;
  }
  const MemorySpec& spec = answer.value();
  channelCount_ = spec.channelCount;
  channelWidth_ = spec.channelWidth;
}

Stated<unsigned long> MemoryFeatObj::queryTotal() const {
  const Stated<MemoryUsage> usage = model().exec(QueryMemUsageCmd());
  if (!usage.ok()) {
    return usage.state();
  }
  return usage.value().total;
}

Stated<unsigned long> MemoryFeatObj::queryUsed() const {
  const Stated<MemoryUsage> usage = model().exec(QueryMemUsageCmd());
  if (!usage.ok()) {
    return usage.state();
  }
  unsigned long regions = 0;
  for (const Stated<unsigned long>& region : usage.value().region) {
    regions += region.ok() ? region.value() : 0;
  }
  const Stated<unsigned long>& own = usage.value().used;
  return std::max(regions, own.ok() ? own.value() : 0);
}

Stated<unsigned int> MemoryFeatObj::getBusWidth() const {
  if (!channelCount_.ok()) {
    return channelCount_;
  }
  if (!channelWidth_.ok()) {
    return channelWidth_;
  }
  return channelCount_.value() * channelWidth_.value();
}

}  // namespace kelp
