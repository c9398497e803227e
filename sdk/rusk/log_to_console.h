#pragma once

#include <mutex>
#include <string>

#include "rusk/log_target.h"

namespace rusk {

/// Writes log lines to standard output, each whole: the mutex keeps the lines of threads apart.
class LogToConsole final : public LogTarget {
 public:
  bool write(const std::string& line, int level) override;
  bool open() override { return true; }

 private:
  std::mutex mutex_;
};

}  // namespace rusk
