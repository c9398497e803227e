#pragma once

#include "command_access/codec_sessions_command_access.h"

namespace tolk {

/// The command `-ds`: active decoder sessions.
class DecoderSessionsCommandAccess : public CodecSessionsCommandAccess {
 public:
  explicit DecoderSessionsCommandAccess(ParsedOptions parsedOptions);
};

}  // namespace tolk
