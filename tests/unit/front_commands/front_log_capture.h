#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common_define.h"

namespace tolk_test {

/// Collects the lines of the front end's log while it lives, from the function's name on and with their
/// level: "E devGetName >> lumoDeviceGetName () failed, ret =  4 ".
class FrontLogCapture final : public rusk::LogTarget {
 public:
  FrontLogCapture() {
    minLevel = rusk::kPassEverything;
    tolk::frontLogger().add(this);
  }
  ~FrontLogCapture() { tolk::frontLogger().remove(this); }

  bool write(const std::string& line, int level) override {
    const std::lock_guard lock(mutex_);
    const auto text = line.find(" >> ");
    const auto function = line.rfind(':', text);
    lines.push_back(std::string(1, "?TDIWEF"[level]) + ' ' + line.substr(function + 1));
    return true;
  }
  bool open() override { return true; }

  /// The lines of one level.
  std::vector<std::string> of(char level) const {
    std::vector<std::string> found;
    for (const auto& line : lines) {
      if (line.front() == level) found.push_back(line.substr(2));
    }
    return found;
  }

  std::vector<std::string> lines;

 private:
  std::mutex mutex_;  ///< several threads write
};

}  // namespace tolk_test
