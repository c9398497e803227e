#pragma once

#include "kelp_log.h"
#include "support/property.h"

namespace tolk_fuzz {

/// Takes all lines of the library's log, so that composing them is part of what is tried. One per program.
class DrainedLog final : public rusk::LogTarget {
 public:
  DrainedLog() {
    minLevel = rusk::kPassEverything;
    kelp::libraryLog().logger.add(this);
  }

  bool write(const std::string& line, int /*level*/) override {
    expect(line.starts_with('['), "a log line begins with its time");
    return true;
  }
  bool open() override { return true; }
};

}  // namespace tolk_fuzz
