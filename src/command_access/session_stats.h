#pragma once

#include <cstdint>
#include <optional>

#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The sessions that work on a device at the moment.
struct SessionStats {
  std::uint32_t active = 0;
  std::uint32_t averageFps = 0;  ///< frames/s, cut to a whole number; 0 without a session
};

/// Nothing when the list of sessions cannot be read. A session whose rate cannot be read counts with 0.
std::optional<SessionStats> encoderStats(const LumoAccessDevice& device);
std::optional<SessionStats> decoderStats(const LumoAccessDevice& device);

}  // namespace tolk
