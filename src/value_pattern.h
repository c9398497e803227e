#pragma once

#include <string>
#include <string_view>

namespace tolk {

/// What an option's value may look like, as ECMAScript expressions that must match the whole value.
namespace pattern {

inline constexpr std::string_view kNone = "";  ///< the option takes no value
inline constexpr std::string_view kIdList = "((0|[1-9][0-9]*),)*(0|[1-9][0-9]*)$";
inline constexpr std::string_view kPositive = "([1-9][0-9]*)$";
inline constexpr std::string_view kNumber = "([0-9]+)$";
inline constexpr std::string_view kText = "\\S+";
inline constexpr std::string_view kWordList = "([0-9a-zA-Z_]+,)*([0-9a-zA-Z_]+)$";
inline constexpr std::string_view kFieldList = "([0-9a-zA-Z_.]+,)*([0-9a-zA-Z_.]+)$";
inline constexpr std::string_view kAccess = "(r|w)$";
inline constexpr std::string_view kUuidList =
    "^\\s*[0-9a-fA-F]{8}(?:-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\\s*"
    "(?:,\\s*[0-9a-fA-F]{8}(?:-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\\s*)*$";
inline constexpr std::string_view kMetricList =
    "^(?=.*\\bGpuId\\b)(?=.*\\b(Temp|Power|Freq|SlowdownCnt|TotalSlowdownTimeMs)\\b)[\\w,]+$";
inline constexpr std::string_view kDecimal = "^(0(\\.\\d+)?|[1-9]\\d*(\\.\\d+)?)$";
inline constexpr std::string_view kFormatList = "^(csv|noheader|csv,noheader|noheader,csv)$";

}  // namespace pattern

/// Whether the whole text is what the pattern asks for; a text of more than 8192 bytes never is.
bool matchesPattern(std::string_view valuePattern, const std::string& text);

}  // namespace tolk
