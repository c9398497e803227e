#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace rusk {

using CipherBlock = std::array<std::uint8_t, 16>;

/// AES-128-CBC key and initial vector of debug logs. They keep the log from being read by accident, not
/// from anyone who has the executable. Changing them makes logs in the field unreadable.
inline constexpr CipherBlock kLogKey = {'o', 'r', 'v', 'a', 'n', 'e', '-', 't',
                                        'o', 'l', 'k', '-', 'l', 'o', 'g', '1'};
inline constexpr CipherBlock kLogVector = {'2', '.', '4', '.', '0', '-', 'd', 'e',
                                           'b', 'u', 'g', '-', 'l', 'o', 'g', '.'};

/// A line as its record of the debug log: the length L in four bytes, least significant first, L bytes
/// of cipher text, one zero byte. L is the line's length rounded up to whole blocks, filled with zeros.
/// Each line starts from the same vector, so a log can be read from any record on. Thread-safe.
std::string encipherLine(const std::string& line);

}  // namespace rusk
