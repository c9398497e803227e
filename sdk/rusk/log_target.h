#pragma once

#include <cstdint>
#include <string>

namespace rusk {

/// Levels of log lines. A target takes a line whose level is not below its minimum.
enum class LogLevel : int { kTrace = 1, kDebug, kInfo, kWarn, kError, kFatal };

constexpr std::int32_t kPassEverything = 0;
constexpr std::int32_t kPassNothing = 7;

/// Where log lines go. Targets are members of process-wide objects and are never deleted through this
/// class, so there is no virtual destructor. Fields of a target are set before a second thread logs.
class LogTarget {
 public:
  /// Takes a composed line without its line end. False when the line was not written, which no caller
  /// of a log statement ever learns.
  virtual bool write(const std::string& line, int level) = 0;
  virtual bool open() = 0;

  std::int32_t minLevel = kPassNothing;

 protected:
  LogTarget() = default;
  LogTarget(const LogTarget&) = default;
  LogTarget& operator=(const LogTarget&) = default;
  ~LogTarget() = default;
};

}  // namespace rusk
