#include "performance_monitor.h"

namespace lumo {

void PerformanceMonitor::start(unsigned int /*mode*/, LumoReturn* status) {
  *status = LUMO_RETURN_NOT_SUPPORTED;
}

void PerformanceMonitor::stop(LumoReturn* status) {
  *status = LUMO_RETURN_NOT_SUPPORTED;
}

void PerformanceMonitor::getSample(LumoPfmSample* /*sample*/, LumoReturn* status) {
  *status = LUMO_RETURN_NOT_SUPPORTED;
}

void PerformanceMonitor::getMetrics(LumoPfmMetric* /*metric*/, const LumoPfmSample& /*first*/,
                                    const LumoPfmSample& /*second*/, LumoReturn* /*status*/) {}

}  // namespace lumo
