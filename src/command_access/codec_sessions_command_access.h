#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/codec_sessions.h"
#include "command_access/command_access_base.h"

namespace tolk {

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
