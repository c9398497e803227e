#include "command_access/session_stats.h"

#include "command_access/codec_sessions.h"

namespace tolk {

namespace {

std::optional<SessionStats> statsOf(const LumoAccessDevice& device, const CodecSessions& kind) {
  SessionStates states;
  if ((device.*kind.states)(states) != LUMO_RETURN_SUCCESS) return std::nullopt;

  SessionStats stats;
  std::uint64_t fps = 0;
  for (const auto& [session, state] : states) {
    if (state != LUMO_VPU_SESSION_ACTIVE) continue;
    LumoVpuSessionMetrics metrics{};
    (device.*kind.metrics)(session, metrics);
    fps += metrics.fps;
    ++stats.active;
  }
  if (stats.active > 0) stats.averageFps = static_cast<std::uint32_t>(fps / stats.active);
  return stats;
}

}  // namespace

std::optional<SessionStats> encoderStats(const LumoAccessDevice& device) {
  return statsOf(device, kEncoderSessions);
}

std::optional<SessionStats> decoderStats(const LumoAccessDevice& device) {
  return statsOf(device, kDecoderSessions);
}

}  // namespace tolk
