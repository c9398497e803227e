#include "value_pattern.h"

#include <regex>

namespace tolk {

namespace {

constexpr std::size_t kLongestValue = 8192;

/// The engine's other way of matching recurses for each character, and the stack of a thread may be small.
constexpr auto kSyntax = std::regex::ECMAScript | std::regex_constants::__polynomial;

}  // namespace

bool matchesPattern(std::string_view valuePattern, const std::string& text) {
  if (valuePattern == ".*") return true;
  if (valuePattern.empty()) return text.empty();
  if (text.size() > kLongestValue) return false;
  return std::regex_match(text, std::regex(valuePattern.begin(), valuePattern.end(), kSyntax));
}

}  // namespace tolk
