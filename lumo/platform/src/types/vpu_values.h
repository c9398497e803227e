#pragma once

#include <cstdint>

#include "kelp_return.h"

namespace kelp {

enum class VpuCoreKind : std::uint32_t { kEncoder = 0, kDecoder = 1, kBoth = 2 };

/// One core of the video engine.
struct VpuCoreSpecData {
  VpuCoreKind kind = VpuCoreKind::kEncoder;
  std::uint32_t threadCount = 0;
  std::uint32_t maxInstances = 0;
  Stated<unsigned int> maxClock;  ///< hertz
};

/// What an instance of a core works on.
struct VpuSsMetrics {
  std::uint32_t status = 0;  ///< 0 idle, 1 active
  std::uint32_t pid = 0;
  std::uint32_t codec = 0;
  std::uint32_t hRes = 0;       ///< pixels
  std::uint32_t vRes = 0;       ///< pixels
  std::uint32_t fps = 0;        ///< frames/s
  std::uint32_t bitrate = 0;    ///< kbit/s
  std::uint32_t sessionId = 0;  ///< place among the instances of all cores of the kind
};

struct VpuSsInstState {
  bool active = false;
};

struct QueryVpuSsMetricsParam {
  std::uint32_t coreId = 0;
  std::uint32_t instance = 0;
};

}  // namespace kelp
