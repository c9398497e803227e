#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tolk {

/// Appends the text, padded with blanks behind it to `width`. A longer text is not cut.
inline void appendLeft(std::string& line, std::string_view text, std::size_t width) {
  line.append(text);
  if (text.size() < width) line.append(width - text.size(), ' ');
}

/// The same with the padding in front of the text.
inline void appendRight(std::string& line, std::string_view text, std::size_t width) {
  if (text.size() < width) line.append(width - text.size(), ' ');
  line.append(text);
}

}  // namespace tolk
