#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "kelp_return.h"

namespace kelp {

/// How busy the parts of a GPU are, in percent.
struct GpuStatus {
  Stated<float> utilization;
  Stated<float> engine0;      ///< graphics
  Stated<float> engine1;      ///< compute
  Stated<float> engine2;      ///< copy
  Stated<float> engine3;      ///< blit
  Stated<float> memoryBusy;   ///< memory controller
  Stated<float> coreMax;      ///< busiest core
  Stated<float> coreAverage;  ///< mean over the cores
};

/// How a GPU is built.
struct GpuSpec {
  Stated<unsigned int> coreCount;
  Stated<unsigned int> clusterCount;
  Stated<std::vector<unsigned int>> unitsPerCore;  ///< shader units of each core, 0 for an absent one
  Stated<unsigned long> maxClock;                  ///< hertz
};

/// Temperatures at which a GPU protects itself, in degrees Celsius.
struct TemperatureLimitInfo {
  Stated<float> slowdown;
  Stated<float> shutdown;
};

/// How often and for how long a GPU was slowed down because it was hot, since boot.
struct ThermalSlowdownStatistics {
  unsigned int count = 0;
  unsigned int totalTime = 0;  ///< milliseconds
};

/// One process's share of a GPU, in percent.
struct ProcessGpuUtil {
  std::uint32_t pid = 0;
  std::uint32_t kind = 0;       ///< 0 graphics, 1 compute
  unsigned long timestamp = 0;  ///< last activity, nanoseconds of the monotonic clock
  std::uint32_t gpu = 0;
  std::uint32_t memory = 0;  ///< memory controller
  std::uint32_t encoder = 0;
  std::uint32_t decoder = 0;
};
using ProcessGpuUtilMap = std::map<std::uint32_t, ProcessGpuUtil>;

struct QueryProcGpuUtilParam {
  unsigned long lastSeen = 0;  ///< nanoseconds of the monotonic clock; 0 for every process
};

struct ResetGpuHwErrorCountsParam {
  unsigned long mask = 0;  ///< a bit per group of counters
};

struct QueryClockParam {
  unsigned int clockId = 0;
};

struct QueryTemperParam {
  unsigned int sensorId = 0;
};

struct QueryVoltageParam {
  unsigned int rail = 0;  ///< 0 GPU, 1 memory, 2 system on chip
};

struct SetPerfStateParam {
  unsigned int state = 0;  ///< 0 (fastest) to 15
};

}  // namespace kelp
