#include "value_pattern.h"

#include <regex>

namespace tolk {

namespace {

/// The expression engine recurses for each character, and the worker's stack has an end.
constexpr std::size_t kLongestValue = 8192;

}  // namespace

bool matchesPattern(std::string_view valuePattern, const std::string& text) {
  if (valuePattern == ".*") return true;
  if (valuePattern.empty()) return text.empty();
  if (text.size() > kLongestValue) return false;
  return std::regex_match(text, std::regex(valuePattern.begin(), valuePattern.end()));
}

}  // namespace tolk
