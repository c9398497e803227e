#pragma once

#include <array>
#include <cstdint>

namespace kelp {

/// The numbers by which the driver of a chip family knows its sensors.
namespace ids {

// The first one is the temperature that is shown.
inline constexpr std::array<std::uint32_t, 3> kWoldSensors{1, 2, 3};
inline constexpr std::array<std::uint32_t, 4> kFenSensors{9, 18, 27, 36};
inline constexpr std::array<std::uint32_t, 2> kTor1Sensors{1000, 1002};

}  // namespace ids

}  // namespace kelp
