#pragma once

#include <cstdint>

namespace tolk {

/// What a device is, in the front end's numbers. The library and the driver number their types
/// differently, and none of those numbers reaches a command.
enum class DeviceType : std::uint32_t {
  kVirtual = 1,  ///< a mediated device, or the device of a guest
  kPhysical = 2,
  kMpcParent = 3,
  kMpcInstance = 4,
};

}  // namespace tolk
