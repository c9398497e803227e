#include "command_access/encoder_sessions_command_access.h"

#include <utility>

namespace tolk {

EncoderSessionsCommandAccess::EncoderSessionsCommandAccess(ParsedOptions parsedOptions)
    : CodecSessionsCommandAccess(std::move(parsedOptions), kEncoderSessions) {}

}  // namespace tolk
