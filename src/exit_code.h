#pragma once

#include <cstdint>

namespace tolk {

/// Exit status of the process. Scripts test these numbers.
enum class ExitCode : std::int32_t {
  kSuccess = 0,
  kUnsupported = 1,  ///< wrong use, or nothing that this device or driver can do
  kLibraryStartFailed = 2,
  kNoDevice = 3,
  kEnumerationFailed = 4,
  kBadArgument = 5,
  kQueryFailed = 6,
  kFileFailed = 7,  ///< a file cannot be opened or written to
  kDriverNotLoaded = 8,
  kNoPermission = 9,
  kOperationFailed = 255,
};

}  // namespace tolk
