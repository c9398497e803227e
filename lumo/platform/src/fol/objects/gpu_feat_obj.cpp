#include "objects/gpu_feat_obj.h"

#include <algorithm>
#include <iterator>

#include "objects/queries.h"

namespace kelp {
namespace {

constexpr float kMaxPercent = 100.0F;
constexpr Stated<float> GpuStatus::*kEngines[] = {&GpuStatus::engine0, &GpuStatus::engine1,
                                                  &GpuStatus::engine2, &GpuStatus::engine3};
/// The number that every family has for its GPU clock, and for its temperature.
constexpr std::uint32_t kAnyFamilys[] = {0};
constexpr unsigned long kAllErrorGroups = ~0UL;

std::span<const std::uint32_t> orAnyFamilys(std::span<const std::uint32_t> own) {
  return own.empty() ? kAnyFamilys : own;
}

/// The largest of what a query says to each id; a failure ends it.
template <class T, class Query>
Stated<T> queryLargest(std::span<const std::uint32_t> ids, Query query) {
  Stated<T> largest = T{};
  for (const std::uint32_t& id : ids) {
    const Stated<T> answer = query(id);
    if (!answer.ok()) {
      return answer.state();
    }
    if (&id == &ids.front() || answer.value() > largest.value()) {
      largest = answer;
    }
  }
  return largest;
}

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

Stated<float> GpuFeatObj::queryEngineUtilization(unsigned int engine) const {
  const DevType type = model().getCuid().type;
  if (type == DevType::kMpcParent || type == DevType::kMpcInstance || engine >= std::size(kEngines)) {
    return KelpReturn::kNotSupported;
  }
  return fieldOf(queryUtilization(), kEngines[engine]);
}

Stated<float> GpuFeatObj::queryTemperature() const {
  return querySensorTemperature(0);
}

Stated<float> GpuFeatObj::querySensorTemperature(unsigned int selector) const {
  // Further sensors of a family have no selector.
  constexpr std::size_t kSelectors = 2;
  if (selector >= std::min(ids_.sensors.size(), kSelectors)) {
    return KelpReturn::kNotSupported;
  }
  return model().exec(QueryTemperCmd(QueryTemperParam{.sensorId = ids_.sensors[selector]}));
}

Stated<float> GpuFeatObj::queryMaxTemperature() const {
  const DevType type = model().getCuid().type;
  if (type != DevType::kPhysical && type != DevType::kMpcParent) {
    return KelpReturn::kNotSupported;
  }
  return queryLargest<float>(getSensorIds(), [this](std::uint32_t id) { return querySensor(id); });
}

Stated<unsigned long> GpuFeatObj::queryClock() const {
  return queryLargest<unsigned long>(getClockIds(), [this](std::uint32_t id) {
    return model().exec(QueryClockCmd(QueryClockParam{.clockId = id}));
  });
}

Stated<unsigned long> GpuFeatObj::queryMaxClock() const {
  if (model().getCuid().arch >= DevArch::kTor1) {
    return KelpReturn::kNotSupported;
  }
  return fieldOf(model().exec(QueryGpuCapCmd()), &GpuSpec::maxClock);
}

Stated<unsigned int> GpuFeatObj::queryGuestUtilization() const {
  constexpr unsigned int kAllGuests = 0;
  return execFor({DevType::kPhysical, DevType::kMpcInstance}, model(), QueryVgpuUtilCmd(kAllGuests));
}

Stated<float> GpuFeatObj::queryMemoryBusy() const {
  return fieldOf(execFor({DevType::kPhysical, DevType::kMpcParent}, model(), QueryGpuStatusCmd()),
                 &GpuStatus::memoryBusy);
}

Stated<float> GpuFeatObj::queryCoreAverage() const {
  return fieldOf(model().exec(QueryGpuStatusCmd()), &GpuStatus::coreAverage);
}

Stated<float> GpuFeatObj::queryCoreMax() const {
  return fieldOf(model().exec(QueryGpuStatusCmd()), &GpuStatus::coreMax);
}

Stated<unsigned int> GpuFeatObj::queryUnitsOfCores(std::uint64_t /*coreMask*/) const {
  return KelpReturn::kNotSupported;
}

Stated<int> GpuFeatObj::reset() const {
  return execFor({DevType::kPhysical}, model(), ResetGpuCmd());
}

Stated<int> GpuFeatObj::resetHwErrorCounts() const {
  return execFor({DevType::kPhysical}, model(),
                 ResetGpuHwErrorCountsCmd(ResetGpuHwErrorCountsParam{.mask = kAllErrorGroups}));
}

Stated<ThermalSlowdownStatistics> GpuFeatObj::queryThermalSlowdown() const {
  return KelpReturn::kNotSupported;
}

std::span<const std::uint32_t> GpuFeatObj::getClockIds() const {
  return orAnyFamilys(ids_.clocks);
}

std::span<const std::uint32_t> GpuFeatObj::getSensorIds() const {
  return orAnyFamilys(ids_.sensors);
}

Stated<float> GpuFeatObj::querySensor(std::uint32_t sensorId) const {
  return model().exec(QueryTemperCmd(QueryTemperParam{.sensorId = sensorId}));
}

}  // namespace kelp
