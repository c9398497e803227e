#pragma once

#include <cstdint>

namespace kelp {

enum class EccMode : std::uint32_t { kOff = 0, kOn = 1 };

/// Inline ECC now, and after the next reset.
struct EccModeInfo {
  EccMode current = EccMode::kOff;
  EccMode pending = EccMode::kOff;
};

/// Pages taken out of use, by cause.
struct EccPageRetirementCount {
  std::uint32_t singleBit = 0;
  std::uint32_t doubleBit = 0;
};

/// One page taken out of use.
struct EccPageRetirementInfo {
  unsigned long count = 0;      ///< retired pages of this cause
  unsigned long address = 0;    ///< bytes
  unsigned long timestamp = 0;  ///< of the retirement, seconds since the epoch
  std::uint32_t cause = 0;      ///< 0 single bit, 1 double bit
  unsigned long location = 0;   ///< channel in bits 0 to 7, bank 8 to 15, row 16 to 47
  unsigned long errorCount = 0;
};

/// One page that waits for the next reset to be taken out of use; none waits while `count` is 0.
struct EccPendingErrorInfo {
  unsigned long count = 0;  ///< pages that wait
  unsigned long address = 0;
  unsigned long timestamp = 0;  ///< of the first error, seconds since the epoch
  std::uint32_t cause = 0;
  unsigned long location = 0;
  unsigned long errorCount = 0;
  unsigned long lastErrorTime = 0;  ///< seconds since the epoch
};

struct QueryEccPageRetirementInfoParam {
  std::uint32_t cause = 0;  ///< 0 single bit, 1 double bit
  std::uint32_t index = 0;  ///< which page of that cause, from 0
};

struct QueryEccPendingErrorInfoParam {
  std::uint32_t index = 0;
};

struct QueryEccErrorsParam {
  std::uint32_t errorType = 0;    ///< 0 correctable, 1 uncorrectable
  std::uint32_t counterType = 0;  ///< 1 inline ECC of the memory
  std::uint32_t location = 0;     ///< 0 volatile, 1 aggregate
};

/// What a clearing of the error counters concerns.
enum class EccCounterType : std::uint32_t { kVolatile = 0, kAggregate = 1 };

}  // namespace kelp
