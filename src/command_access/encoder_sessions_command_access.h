#pragma once

#include "command_access/codec_sessions_command_access.h"

namespace tolk {

/// The command `-es`: active encoder sessions.
class EncoderSessionsCommandAccess : public CodecSessionsCommandAccess {
 public:
  explicit EncoderSessionsCommandAccess(ParsedOptions parsedOptions);
};

}  // namespace tolk
