#pragma once

#include <set>
#include <string>

#include "rusk/log_target.h"

namespace rusk {

/// The targets that a log line goes to. Owns none of them: a target outlives its place in the logger.
///
/// The set is filled by one thread before others log. Adding a target that is already there changes
/// nothing and may happen at any time.
class Logger {
 public:
  void add(LogTarget* target);
  void remove(LogTarget* target);

  /// Offers the line to every target in the order of the set; each decides by its own level.
  void write(const std::string& line, int level) const;

 private:
  std::set<LogTarget*> targets_;
};

}  // namespace rusk
