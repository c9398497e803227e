#include "device.h"
#include "kelp_log.h"

// Counters that are sampled over an interval.

namespace lumo {

bool Device::isPfmSupported(LumoReturn* status) const {
  const kelp::DevCuid& cuid = getCuid();
  const bool old = cuid.arch == kelp::DevArch::kWold || cuid.arch == kelp::DevArch::kFen1;
  const bool supported = !old && cuid.type == kelp::DevType::kPhysical;
  if (!supported) {
    *status = LUMO_RETURN_NOT_SUPPORTED;
  }
  return supported;
}

PerformanceMonitor* Device::enterPfm(LumoReturn* status) const {
  if (!isPfmSupported(status)) {
    return nullptr;
  }
  if (perfMonitor_ == nullptr) {
    KELP_LOG(kError) << "perfMonitor pointer is nullptr";
    *status = LUMO_RETURN_UNKNOWN_ERROR;
  }
  return perfMonitor_.get();
}

void Device::startPfm(unsigned int mode, LumoReturn* status) {
  if (PerformanceMonitor* const monitor = enterPfm(status)) {
    monitor->start(mode, status);
  }
}

void Device::stopPfm(LumoReturn* status) {
  if (PerformanceMonitor* const monitor = enterPfm(status)) {
    monitor->stop(status);
  }
}

void Device::getPfmSample(LumoPfmSample* sample, LumoReturn* status) {
  if (PerformanceMonitor* const monitor = enterPfm(status)) {
    monitor->getSample(sample, status);
  }
}

void Device::getPfmMetrics(LumoPfmMetric* metric, const LumoPfmSample& first, const LumoPfmSample& second,
                           LumoReturn* status) {
  if (PerformanceMonitor* const monitor = enterPfm(status)) {
    monitor->getMetrics(metric, first, second, status);
  }
}

}  // namespace lumo
