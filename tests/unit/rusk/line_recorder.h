#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "rusk/log_target.h"

namespace rusk_test {

/// Keeps the lines that reach it, with their levels.
class LineRecorder final : public rusk::LogTarget {
 public:
  LineRecorder() { minLevel = rusk::kPassEverything; }

  bool write(const std::string& line, int level) override {
    std::lock_guard lock(mutex_);
    lines.emplace_back(line, level);
    return true;
  }
  bool open() override { return true; }

  std::vector<std::pair<std::string, int>> lines;

 private:
  std::mutex mutex_;
};

}  // namespace rusk_test
