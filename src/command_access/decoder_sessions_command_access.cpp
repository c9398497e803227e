#include "command_access/decoder_sessions_command_access.h"

#include <utility>

namespace tolk {

DecoderSessionsCommandAccess::DecoderSessionsCommandAccess(ParsedOptions parsedOptions)
    : CodecSessionsCommandAccess(std::move(parsedOptions), kDecoderSessions) {}

}  // namespace tolk
