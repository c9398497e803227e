#include "command_access/encoder_sessions_command_access.h"

#include <utility>

namespace tolk {

EncoderSessionsCommandAccess::EncoderSessionsCommandAccess(ParsedOptions parsedOptions)
    : CodecSessionsCommandAccess(std::move(parsedOptions),
                                 {.states = &LumoAccessDevice::vpuGetEncoderSessionStates,
                                  .metrics = &LumoAccessDevice::vpuGetEncoderSessionMetrics,
                                  .noStates = "get encoder session states failed, ret = ",
                                  .noMetrics = "get encoder session metrics failed, ret = "}) {}

}  // namespace tolk
