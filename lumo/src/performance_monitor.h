#pragma once

#include <cstdint>

#include "lumo.h"

namespace lumo {

/// The counters of one device that can be sampled over an interval. There are none that the library
/// reads yet, so that every operation answers LUMO_RETURN_NOT_SUPPORTED and nothing is ever started.
///
/// Owned by its device. Holds no lock.
class PerformanceMonitor {
 public:
  explicit PerformanceMonitor(std::uint32_t deviceId) : deviceId_(deviceId) {}

  std::uint32_t getDeviceId() const { return deviceId_; }
  int getSession() const { return session_; }
  bool isStarted() const { return started_; }

  void start(unsigned int mode, LumoReturn* status);
  void stop(LumoReturn* status);
  void getSample(LumoPfmSample* sample, LumoReturn* status);
  /// Leaves the metric and the code as they are.
  void getMetrics(LumoPfmMetric* metric, const LumoPfmSample& first, const LumoPfmSample& second,
                  LumoReturn* status);

 private:
  std::uint32_t deviceId_;
  int session_ = -1;
  bool started_ = false;
};

}  // namespace lumo
