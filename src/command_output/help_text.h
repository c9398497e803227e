#pragma once

#include <span>
#include <string_view>

namespace tolk {

/// One line of the usage text: a left part, padded to a width but never cut, and a right part behind it.
struct HelpLine {
  int width;  ///< columns of the left part; 0 for as many as it has
  std::string_view left;
  std::string_view right;
  bool inGuest = false;  ///< the line belongs to the short text of a guest too
};

/// The full usage text. The short one is made of its marked lines.
std::span<const HelpLine> helpText();

}  // namespace tolk
