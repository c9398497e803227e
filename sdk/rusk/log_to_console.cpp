#include "rusk/log_to_console.h"

#include <iostream>

namespace rusk {

bool LogToConsole::write(const std::string& line, int level) {
  if (level < minLevel) return false;

  std::lock_guard lock(mutex_);
  // Unformatted: a field width that a renderer has just set belongs to the renderer's next text.
  std::cout.write(line.data(), static_cast<std::streamsize>(line.size()));
  std::cout.put('\n');
  std::cout.flush();
  return std::cout.good();
}

}  // namespace rusk
