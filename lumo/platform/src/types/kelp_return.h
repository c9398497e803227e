#pragma once

#include <cstdint>

#include "rusk/stated_value.h"

namespace kelp {

/// Why a platform operation has no value. The numbers are part of the library's contract: one table in
/// lumo_def turns them into LumoReturn codes, and log lines print them.
enum class KelpReturn : std::uint32_t {
  kSuccess = 0,
  kFailure = 1,
  kDriverNotLoaded = 2,
  kDriverTooNew = 3,
  kDriverTooOld = 4,
  kNotInitialized = 5,
  kNotSupported = 6,
  kNotFound = 7,
  kReadFailed = 8,
  kBadArgument = 9,
  kAccessFailed = 10,
  kFirmwareFailed = 11,
  kBufferTooSmall = 12,
  kOutOfMemory = 13,
  kBusy = 14,
  kNoPermission = 15,
  kDeviceLost = 16,
};

/// A value of the platform layers, or the state that says why there is none. A stated value that
/// nobody filled in reads as "not supported", which is how a feature that does nothing answers.
template <class T>
using Stated = rusk::StatedValue<KelpReturn, T, KelpReturn::kNotSupported, KelpReturn::kSuccess>;

/// The result of an operation that has no value but its success.
using Done = Stated<int>;

}  // namespace kelp
