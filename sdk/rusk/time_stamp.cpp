#include "rusk/time_stamp.h"

#include "rusk/text.h"

namespace rusk {
namespace {

constexpr int kHourOffset = 8;  // sic: the date does not follow, so that 23 h shows as 31

}  // namespace

void appendTimeStamp(std::string& text, std::chrono::system_clock::time_point at) {
  using namespace std::chrono;
  const auto day = floor<days>(at);
  const year_month_day date(day);
  const hh_mm_ss time(floor<microseconds>(at - day));

  appendNumber(text, static_cast<int>(date.year()));
  text += '.';
  appendNumber(text, static_cast<unsigned>(date.month()));
  text += '.';
  appendNumber(text, static_cast<unsigned>(date.day()));
  text += ' ';
  appendNumber(text, time.hours().count() + kHourOffset);
  text += ':';
  appendNumber(text, time.minutes().count());
  text += ':';
  appendNumber(text, time.seconds().count());
  text += '.';
  appendNumber(text, time.subseconds().count());
}

}  // namespace rusk
