#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "kelp_log.h"

namespace tolk_test {

/// Collects the library's log lines while it lives.
class LogCapture final : public rusk::LogTarget {
 public:
  LogCapture() {
    minLevel = 0;
    kelp::libraryLog().logger.add(this);
  }
  ~LogCapture() { kelp::libraryLog().logger.remove(this); }

  bool write(const std::string& line, int level) override {
    lines.emplace_back(level, line);
    return true;
  }
  bool open() override { return true; }

  bool has(const std::string& text) const {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const auto& line) { return line.second.find(text) != std::string::npos; });
  }
  bool has(rusk::LogLevel level, const std::string& text) const {
    return std::any_of(lines.begin(), lines.end(), [&](const auto& line) {
      return line.first == static_cast<int>(level) && line.second.find(text) != std::string::npos;
    });
  }
  std::size_t count(const std::string& text) const {
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
      return line.second.find(text) != std::string::npos;
    }));
  }

  std::vector<std::pair<int, std::string>> lines;
};

}  // namespace tolk_test
