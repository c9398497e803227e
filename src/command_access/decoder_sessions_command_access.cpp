#include "command_access/decoder_sessions_command_access.h"

#include <utility>

namespace tolk {

DecoderSessionsCommandAccess::DecoderSessionsCommandAccess(ParsedOptions parsedOptions)
    : CodecSessionsCommandAccess(std::move(parsedOptions),
                                 {.states = &LumoAccessDevice::vpuGetDecoderSessionStates,
                                  .metrics = &LumoAccessDevice::vpuGetDecoderSessionMetrics,
                                  .noStates = "get decoder session states failed, ret = ",
                                  .noMetrics = "get decoder session metrics failed, ret = "}) {}

}  // namespace tolk
