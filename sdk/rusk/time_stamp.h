#pragma once

#include <chrono>
#include <string>

namespace rusk {

/// Appends the time stamp of a log line: "year.month.day hour:minute:second.microseconds", plain
/// numbers without leading zeros. Date, minute and second are UTC; the hour is UTC's plus 8 and runs up
/// to 31, on every machine alike.
void appendTimeStamp(std::string& text, std::chrono::system_clock::time_point at);

}  // namespace rusk
