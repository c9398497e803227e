#pragma once

#include <cstdint>

#include "kelp_return.h"
#include "rusk/stated_value.h"

namespace kelp {

/// State of the negotiation with the kernel driver.
enum class MkisError : std::uint32_t {
  kSuccess = 0,
  kFailure = 1,
  kNotListed = 3,
  kRemoteTooNew = 4,
  kRemoteTooOld = 5,
};

template <class T>
using MkisStated = rusk::StatedValue<MkisError, T, MkisError::kFailure, MkisError::kSuccess>;

/// The state under which a failed negotiation travels upward. An interface that the driver does not
/// list is a feature that this driver lacks.
constexpr KelpReturn toKelpReturn(MkisError error) {
  switch (error) {
    case MkisError::kSuccess: return KelpReturn::kSuccess;
    case MkisError::kNotListed: return KelpReturn::kNotSupported;
    case MkisError::kRemoteTooNew: return KelpReturn::kDriverTooNew;
    case MkisError::kRemoteTooOld: return KelpReturn::kDriverTooOld;
    case MkisError::kFailure: break;
  }
  return KelpReturn::kFailure;
}

}  // namespace kelp
