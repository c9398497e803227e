#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// What tells the encoders' sessions from the decoders'.
struct CodecSessions {
  LumoReturn (LumoAccessDevice::*states)(SessionStates& states) const;
  LumoReturn (LumoAccessDevice::*metrics)(std::uint32_t session, LumoVpuSessionMetrics& metrics) const;
  const char* noStates;   ///< log line of a failure
  const char* noMetrics;  ///< the same
};

extern const CodecSessions kEncoderSessions;
extern const CodecSessions kDecoderSessions;

/// Puts the active sessions of a device into `document[key]` by session id; a device without any gets no
/// member. A session that cannot be read fails the whole: a list with gaps would be taken for complete.
/// A codec that has no name throws std::out_of_range.
LumoReturn queryActiveSessions(const LumoAccessDevice& device, const CodecSessions& kind,
                               const std::string& key, nlohmann::ordered_json& document);

}  // namespace tolk
