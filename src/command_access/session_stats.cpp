#include "command_access/session_stats.h"

namespace tolk {

namespace {

using ListStates = LumoReturn (LumoAccessDevice::*)(SessionStates&) const;
using ReadMetrics = LumoReturn (LumoAccessDevice::*)(std::uint32_t, LumoVpuSessionMetrics&) const;

std::optional<SessionStats> statsOf(const LumoAccessDevice& device, ListStates list, ReadMetrics read) {
  SessionStates states;
  if ((device.*list)(states) != LUMO_RETURN_SUCCESS) return std::nullopt;

  SessionStats stats;
  std::uint64_t fps = 0;
  for (const auto& [session, state] : states) {
    if (state != LUMO_VPU_SESSION_ACTIVE) continue;
    LumoVpuSessionMetrics metrics{};
    (device.*read)(session, metrics);
    fps += metrics.fps;
    ++stats.active;
  }
  if (stats.active > 0) stats.averageFps = static_cast<std::uint32_t>(fps / stats.active);
  return stats;
}

}  // namespace

std::optional<SessionStats> encoderStats(const LumoAccessDevice& device) {
  return statsOf(device, &LumoAccessDevice::vpuGetEncoderSessionStates,
                 &LumoAccessDevice::vpuGetEncoderSessionMetrics);
}

std::optional<SessionStats> decoderStats(const LumoAccessDevice& device) {
  return statsOf(device, &LumoAccessDevice::vpuGetDecoderSessionStates,
                 &LumoAccessDevice::vpuGetDecoderSessionMetrics);
}

}  // namespace tolk
