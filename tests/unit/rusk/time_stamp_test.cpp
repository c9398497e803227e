#include "rusk/time_stamp.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <chrono>
#include <string>

namespace {

using namespace std::chrono;

std::string stampOf(system_clock::time_point at) {
  std::string text;
  rusk::appendTimeStamp(text, at);
  return text;
}

TEST(TimeStamp, LineAtHalfPastElevenAtNightShowsHour31OfTheSameDay) {
  EXPECT_EQ(stampOf(sys_days{2024y / March / 9} + 23h + 30min), "2024.3.9 31:30:0.0");
}

TEST(TimeStamp, HourOf16ShowsAs24) {
  EXPECT_EQ(stampOf(sys_days{2024y / December / 31} + 16h), "2024.12.31 24:0:0.0");
}

TEST(TimeStamp, NumbersHaveNoLeadingZeros) {
  EXPECT_EQ(stampOf(sys_days{2024y / January / 2} + 1h + 2min + 3s + 4us), "2024.1.2 9:2:3.4");
}

TEST(TimeStamp, MicrosecondsAreThoseWithinTheSecond) {
  EXPECT_EQ(stampOf(sys_days{2025y / November / 30} + 59s + 999999us), "2025.11.30 8:0:59.999999");
}

TEST(TimeStamp, NanosecondsAreCutOff) {
  EXPECT_EQ(stampOf(sys_days{2025y / November / 30} + nanoseconds(1999)), "2025.11.30 8:0:0.1");
}

TEST(TimeStamp, LeapDayIsKnown) {
  EXPECT_EQ(stampOf(sys_days{2024y / February / 29}), "2024.2.29 8:0:0.0");
}

TEST(TimeStamp, TimeBeforeTheEpochCountsForward) {
  EXPECT_EQ(stampOf(sys_days{1970y / January / 1} - 1us), "1969.12.31 31:59:59.999999");
}

TEST(TimeStamp, MachineZoneDoesNotMatter) {
  const char* zone = ::getenv("TZ");
  const std::string saved = zone != nullptr ? zone : "";
  ::setenv("TZ", "America/New_York", 1);
  ::tzset();
  EXPECT_EQ(stampOf(sys_days{2024y / July / 1}), "2024.7.1 8:0:0.0");
  zone != nullptr ? ::setenv("TZ", saved.c_str(), 1) : ::unsetenv("TZ");
  ::tzset();
}

TEST(TimeStamp, IsAppended) {
  std::string text = "[";
  rusk::appendTimeStamp(text, sys_days{2024y / July / 1});
  EXPECT_EQ(text, "[2024.7.1 8:0:0.0");
}

}  // namespace
