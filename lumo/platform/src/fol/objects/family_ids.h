#pragma once

#include <array>
#include <cstdint>

#include "dev_cuid.h"

/// The numbers by which the driver of a chip family knows its clocks and sensors.
namespace kelp::ids {

// One per cluster.
inline constexpr std::array<std::uint32_t, 2> kFenClocks{72, 79};
inline constexpr std::array<std::uint32_t, 1> kTor1Clocks{1000};

// The first one is the temperature that is shown.
inline constexpr std::array<std::uint32_t, 3> kWoldSensors{1, 2, 3};
inline constexpr std::array<std::uint32_t, 4> kFenSensors{9, 18, 27, 36};
inline constexpr std::array<std::uint32_t, 2> kTor1Sensors{1000, 1002};

struct MemoryClock {
  DevArch arch;
  std::uint32_t clockId;
};
inline constexpr std::array<MemoryClock, 4> kMemoryClocks{{
    {DevArch::kWold, 1},
    {DevArch::kFen1, 80},
    {DevArch::kFen2, 80},
    {DevArch::kTor1, 1001},
}};

}  // namespace kelp::ids
