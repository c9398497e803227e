#include "command_access/codec_sessions.h"

#include "command_access/codec_name.h"
#include "common_define.h"

namespace tolk {

const CodecSessions kEncoderSessions{.states = &LumoAccessDevice::vpuGetEncoderSessionStates,
                                     .metrics = &LumoAccessDevice::vpuGetEncoderSessionMetrics,
                                     .noStates = "get encoder session states failed, ret = ",
                                     .noMetrics = "get encoder session metrics failed, ret = "};

const CodecSessions kDecoderSessions{.states = &LumoAccessDevice::vpuGetDecoderSessionStates,
                                     .metrics = &LumoAccessDevice::vpuGetDecoderSessionMetrics,
                                     .noStates = "get decoder session states failed, ret = ",
                                     .noMetrics = "get decoder session metrics failed, ret = "};

LumoReturn queryActiveSessions(const LumoAccessDevice& device, const CodecSessions& kind,
                               const std::string& key, nlohmann::ordered_json& document) {
  SessionStates states;
  if (const LumoReturn ret = (device.*kind.states)(states); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << kind.noStates << ret;
    return ret;
  }
  for (const auto& [session, state] : states) {
    if (state != LUMO_VPU_SESSION_ACTIVE) continue;
    LumoVpuSessionMetrics metrics{};
    if (const LumoReturn ret = (device.*kind.metrics)(session, metrics); ret != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << kind.noMetrics << ret;
      return ret;
    }
    document[key][std::to_string(session)] = {
        {"Pid", std::to_string(metrics.pid)},          {"Codec Type", codecName(metrics.codec)},
        {"hResolution", std::to_string(metrics.hRes)}, {"vResolution", std::to_string(metrics.vRes)},
        {"frameRate", std::to_string(metrics.fps)},    {"bitRate(kbps)", std::to_string(metrics.bitrate)}};
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
