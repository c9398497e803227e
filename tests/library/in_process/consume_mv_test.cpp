#include <gtest/gtest.h>

#include <map>

#include "lumo_def.h"
#include "support/log_capture.h"

// How a state of the platform leaves the library.

namespace lumo {
namespace {

using kelp::KelpReturn;
using kelp::Stated;
using rusk::LogLevel;
using tolk_test::LogCapture;

constexpr auto kUnwritten = static_cast<LumoReturn>(-1);

TEST(ConsumeMvTest, State16Gives12AndStillAValue) {
  LumoReturn status = kUnwritten;
  EXPECT_EQ(consumeMv(Stated<unsigned>(KelpReturn::kDeviceLost), &status), 0U);
  EXPECT_EQ(status, LUMO_RETURN_DEVICE_LOST);
  EXPECT_EQ(static_cast<int>(status), 12);
}

TEST(ConsumeMvTest, State1Gives999) {
  LumoReturn status = kUnwritten;
  EXPECT_EQ(consumeMv(Stated<std::string>(KelpReturn::kFailure), &status), "");
  EXPECT_EQ(static_cast<int>(status), 999);
}

TEST(ConsumeMvTest, ASuccessStoresItsCodeAndLogsNothing) {
  const LogCapture log;
  LumoReturn status = kUnwritten;
  EXPECT_EQ(consumeMv(Stated<std::string>("text"), &status), "text");
  EXPECT_EQ(status, LUMO_RETURN_SUCCESS);
  EXPECT_TRUE(log.lines.empty());
}

TEST(ConsumeMvTest, AFailureIsOneLineThatNamesTheCaller) {
  const LogCapture log;
  LumoReturn status = kUnwritten;
  consumeMv(Stated<int>(KelpReturn::kNotSupported), &status, "system.cc", 27);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(log.has(LogLevel::kError, " lumo_def:"));
  EXPECT_TRUE(log.has(":consumeMv >> Consuming mv with error, state =  6  ( system.cc : 27 ) "));
}

TEST(ConsumeMvTest, TheCallerIsNamedByItsFileWithoutFolders) {
  const LogCapture log;
  LumoReturn status = kUnwritten;
  consumeMv(Stated<int>(KelpReturn::kNotSupported), &status);
  const std::string line = std::to_string(__LINE__ - 1);
  EXPECT_TRUE(log.has("( consume_mv_test.cpp : " + line + " ) "));
}

TEST(ConsumeMvTest, AMapWithAFailedEntryIsItselfASuccess) {
  const LogCapture log;
  LumoReturn status = kUnwritten;
  using Clocks = std::map<std::string, Stated<unsigned>>;
  const Clocks clocks =
      consumeMv(Stated<Clocks>(Clocks{{"gpu", 1500U}, {"memory", KelpReturn::kNotSupported}}), &status);
  EXPECT_EQ(status, LUMO_RETURN_SUCCESS);
  EXPECT_EQ(clocks.at("gpu").value(), 1500U);
  EXPECT_EQ(clocks.at("memory").state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log.lines.empty());
}

TEST(StatusTest, EveryStateHasItsCode) {
  const int codes[] = {0, 999, 1, 10, 9, 2, 4, 7, 2, 3, 2, 2, 6, 8, 11, 5, 12, 999, 999};
  for (unsigned state = 0; state < std::size(codes); ++state) {
    EXPECT_EQ(static_cast<int>(statusOf(static_cast<KelpReturn>(state))), codes[state]) << "state " << state;
  }
  EXPECT_EQ(static_cast<int>(statusOf(static_cast<KelpReturn>(0xFFFFFFFF))), 999);
}

TEST(StatusTest, EveryCodeHasItsText) {
  const std::map<int, std::string> texts = {
      {0, "Success"},           {1, "Driver Not Loaded"}, {2, "Access to the driver failed"},
      {3, "Invalid Argument"},  {4, "Not Supported"},     {5, "Insufficient Permissions"},
      {6, "Insufficient Size"}, {7, "Not Found"},         {8, "Insufficient Memory"},
      {9, "Driver too old"},    {10, "Driver too new"},   {11, "Unknown Error"},
      {12, "Unknown Error"},    {13, "Unknown Error"},    {999, "Unknown Error"},
      {-1, "Unknown Error"}};
  for (const auto& [code, text] : texts) {
    EXPECT_EQ(lumoReturnText(static_cast<LumoReturn>(code)), text) << code;
  }
}

}  // namespace
}  // namespace lumo
