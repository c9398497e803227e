#include "driver_mode.h"

#include <gtest/gtest.h>

namespace tolk {
namespace {

TEST(DriverMode, KnowsThreeNumbers) {
  EXPECT_EQ(driverModeOf("-1"), DriverMode::kBareHost);
  EXPECT_EQ(driverModeOf("0"), DriverMode::kVirtualisationHost);
  EXPECT_EQ(driverModeOf("1"), DriverMode::kGuest);
}

TEST(DriverMode, WhiteSpaceAroundTheNumberDoesNotCount) {
  EXPECT_EQ(driverModeOf(" 1\n"), DriverMode::kGuest);
  EXPECT_EQ(driverModeOf("\t-1 \r\n"), DriverMode::kBareHost);
}

TEST(DriverMode, AnythingElseIsOther) {
  for (const auto* text : {"", "\n", "2", "-2", "+1", "01", "1 1", "yes"}) {
    EXPECT_EQ(driverModeOf(text), DriverMode::kOther) << text;
  }
}

TEST(DriverMode, NumbersAreThoseOfTheModuleParameter) {
  EXPECT_EQ(static_cast<int>(DriverMode::kOther), -2);
  EXPECT_EQ(static_cast<int>(DriverMode::kBareHost), -1);
  EXPECT_EQ(static_cast<int>(DriverMode::kVirtualisationHost), 0);
  EXPECT_EQ(static_cast<int>(DriverMode::kGuest), 1);
}

}  // namespace
}  // namespace tolk
