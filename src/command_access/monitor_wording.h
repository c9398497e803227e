#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// What the monitors say, which other commands say without the full stop or with a capital letter.
inline constexpr StartWording kMonitorWording{
    .noCount = {"Error: failed to get the number of GPU device.", ExitCode::kEnumerationFailed},
    .noDevice = {"Error: no OV GPU device found.", ExitCode::kNoDevice}};

inline constexpr const char* kMonitorNotAvailable =
    "Error: the requested operation is not available on target device.";

}  // namespace tolk
