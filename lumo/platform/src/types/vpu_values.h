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

}  // namespace kelp
