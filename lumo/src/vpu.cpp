#include "vpu.h"

#include "kelp_log.h"
#include "objects/vpu_feat_obj.h"
#include "whole_number.h"

namespace lumo {

using kelp::Features;
using kelp::VpuCoreKind;
using kelp::VpuFeatObj;

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
  for (const std::vector<unsigned int>& ids : coreIds_) {
    showcase_.insert(showcase_.end(), ids.begin(), ids.end());
  }
}

bool Vpu::hasCores(LumoReturn* status) const {
  if (showcase_.empty()) {
    KELP_LOG(kError) << "Condition not match !";
    *status = LUMO_RETURN_NOT_SUPPORTED;
  }
  return !showcase_.empty();
}

std::shared_ptr<VpuFeatObj> Vpu::enterCores(LumoReturn* status, std::source_location operation) const {
  std::shared_ptr<VpuFeatObj> feature = enter(&Features::vpu, status, operation);
  return feature != nullptr && hasCores(status) ? feature : nullptr;
}

LumoVpuUtilization Vpu::getUtilization(LumoReturn* status) const {
  const auto feature = enterCores(status, std::source_location::current());
  if (feature == nullptr) {
    return {};
  }
  const std::vector<kelp::Stated<float>> shares = consumeMv(feature->queryUtilization(), status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  // A core that is off counts as idle.
  std::array<float, 3> sums{};
  for (std::size_t kind = 0; kind < sums.size(); ++kind) {
    for (const unsigned int id : coreIds_[kind]) {
      if (id >= shares.size()) {
        KELP_LOG(kError) << "Failed to get util data for core id " << id;
        *status = LUMO_RETURN_UNKNOWN_ERROR;
        return {};
      }
      sums[kind] += shares[id].value();
    }
  }
  const auto mean = [](float sum, std::size_t count) {
    return count == 0 ? 0U : truncated<unsigned int>(sum / static_cast<float>(count));
  };
  return {.total = mean(sums[0] + sums[1] + sums[2], showcase_.size()),
          .encoder = mean(sums[0], coreIds_[0].size()),
          .decoder = mean(sums[1], coreIds_[1].size())};
}

unsigned int Vpu::getClock(LumoReturn* status) const {
  const auto feature = enterCores(status, std::source_location::current());
  if (feature == nullptr) {
    return 0;
  }
  std::vector<kelp::Stated<unsigned int>> clocks = consumeMv(feature->queryFrequency(), status);
  if (*status != LUMO_RETURN_SUCCESS) {
    return 0;
  }
  const unsigned int shown = showcase_.front();
  if (shown >= clocks.size()) {
    KELP_LOG(kError) << "Showcase index oor, index = " << shown << ", vec size = " << clocks.size();
    *status = LUMO_RETURN_UNKNOWN_ERROR;
    return 0;
  }
  return megahertz(consumeMv(std::move(clocks[shown]), status));
}

unsigned int Vpu::getMaxClock(LumoReturn* status) const {
  const auto feature = enterCores(status, std::source_location::current());
  if (feature == nullptr) {
    return 0;
  }
  if (!hasMaxClocks()) {
    logMissingFeature(std::source_location::current());
    *status = LUMO_RETURN_NOT_SUPPORTED;
    return 0;
  }
  kelp::VpuCoreSpecData core = consumeMv(feature->getCoreSpec(showcase_.front()), status);
  return *status == LUMO_RETURN_SUCCESS ? megahertz(consumeMv(std::move(core.maxClock), status)) : 0;
}

unsigned int Vpu::getCapacity(VpuCoreKind kind, LumoReturn* status, std::source_location operation) const {
  const auto feature = enterCores(status, operation);
  if (feature == nullptr) {
    return 0;
  }
  unsigned int capacity = 0;
  for (const VpuCoreKind counted : {kind, VpuCoreKind::kBoth}) {
    for (const unsigned int core : getCoreIds(counted)) {
      capacity += countSlots(*feature, core, status);
    }
  }
  return capacity;
}

unsigned int Vpu::getEncodeCapacity(LumoReturn* status) const {
  return getCapacity(VpuCoreKind::kEncoder, status, std::source_location::current());
}

unsigned int Vpu::getDecodeCapacity(LumoReturn* status) const {
  return getCapacity(VpuCoreKind::kDecoder, status, std::source_location::current());
}

}  // namespace lumo
