#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tolk_fuzz {

/// While it lives, code that opens a file by a fixed path, or runs a command for its output, gets the parts
/// of a text instead, one for each open in turn, and finds nothing when they are used up. A part ends at a
/// byte of value 30. One at a time; the linker leads the calls here (`--wrap`).
class ServedFiles {
 public:
  explicit ServedFiles(std::string_view text);
  ~ServedFiles();
  ServedFiles(const ServedFiles&) = delete;
  ServedFiles& operator=(const ServedFiles&) = delete;

  /// The next part, null without one.
  const std::string* next();

 private:
  std::vector<std::string> parts_;
  std::size_t taken_ = 0;
};

}  // namespace tolk_fuzz
