#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <vector>

namespace rusk {

/// The text without the white space at its ends.
std::string_view trim(std::string_view text);

/// The pieces between separators, empty ones included: n separators make n + 1 pieces, and so an empty
/// text is one empty piece.
std::vector<std::string> split(std::string_view text, char separator);

/// The number that the whole text spells, or nothing: no white space, no sign but '-' for a signed T,
/// no rest behind the digits, and nothing that T cannot hold. In base 16 a leading "0x" may stand.
template <class T>
std::optional<T> parseNumber(std::string_view text, int base = 10) {
  static_assert(std::is_integral_v<T> && !std::is_same_v<T, bool>);
  if (base == 16 && (text.starts_with("0x") || text.starts_with("0X"))) {
    text.remove_prefix(2);
    if (text.starts_with('-')) return std::nullopt;
  }
  T number{};
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || rest != end) return std::nullopt;
  return number;
}

/// Appends a number as a stream with default settings prints it; a floating one as "%g" does.
template <class T>
void appendNumber(std::string& text, T number) {
  char digits[32];
  std::to_chars_result result;
  if constexpr (std::is_floating_point_v<T>) {
    result = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 6);
  } else {
    result = std::to_chars(digits, digits + sizeof digits, number);
  }
  text.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

}  // namespace rusk
