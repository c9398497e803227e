#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// What tells the encoders' sessions from the decoders'.
struct CodecSessions {
  LumoReturn (LumoAccessDevice::*states)(SessionStates& states) const;
  LumoReturn (LumoAccessDevice::*metrics)(std::uint32_t session, LumoVpuSessionMetrics& metrics) const;
  const char* noStates;   ///< log line of a failure
  const char* noMetrics;  ///< the same
};

/// The sessions that are active in the GPUs' video engines. Any failure ends the command: a list with gaps
/// would be taken for the whole. So does a codec that has no name, by an exception that nothing catches.
class CodecSessionsCommandAccess : public CommandAccessBase {
 public:
  std::shared_ptr<Step> work() override;

 protected:
  CodecSessionsCommandAccess(ParsedOptions parsedOptions, const CodecSessions& kind);

 private:
  /// Fills the device's member; a device without active sessions gets none.
  LumoReturn querySessions(std::uint32_t index, nlohmann::ordered_json& document) const;

  const CodecSessions kind_;
};

}  // namespace tolk
