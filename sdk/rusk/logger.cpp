#include "rusk/logger.h"

namespace rusk {

void Logger::add(LogTarget* target) {
  if (target != nullptr) targets_.insert(target);
}

void Logger::remove(LogTarget* target) {
  targets_.erase(target);
}

void Logger::write(const std::string& line, int level) const {
  for (LogTarget* target : targets_) target->write(line, level);
}

}  // namespace rusk
