#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_access/list_command_access.h"
#include "command_access/tolk_command_access.h"
#include "command_error.h"
#include "driver_mode.h"
#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {
namespace {

using tolk_test::fakeLumo;
using tolk_test::FrontLogCapture;

constexpr const char* kNotAvailableText = "Error: the requested operation is not available on target device";

/// Failures of a library that worked a moment before, which no simulated host has.
class CommandsTest : public testing::Test {
 protected:
  void SetUp() override {
    fakeLumo() = {};
    setDriverMode(DriverMode::kBareHost);
  }
  void TearDown() override { setDriverMode(DriverMode::kOther); }

  template <class Command>
  static void expectError(const std::string& message, ExitCode code, ParsedOptions options = {}) {
    Command command(std::move(options));
    const auto error = std::dynamic_pointer_cast<CommandError>(command.work());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, message);
    EXPECT_EQ(error->code, code);
  }

  FrontLogCapture log_;
};

TEST_F(CommandsTest, SummaryFailsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError<TolkCommandAccess>("Error: failed to get the number of GPU device",
                                 ExitCode::kEnumerationFailed);
}

TEST_F(CommandsTest, SummaryFailsWhenADeviceIsLostBeforeItIsOrdered) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_NOT_FOUND});
  expectError<TolkCommandAccess>("Error: failed to find GPU devices", ExitCode::kEnumerationFailed);
}

TEST_F(CommandsTest, SummaryFailsWhenADeviceIsLostBeforeItsRow) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_SUCCESS, LUMO_RETURN_NOT_FOUND});
  expectError<TolkCommandAccess>(kNotAvailableText, ExitCode::kQueryFailed);
}

TEST_F(CommandsTest, SummaryFailsWhenTheTypeCannotBeRead) {
  // Order and name ask for the property first.
  fakeLumo().fail("lumoDeviceGetProperty",
                  {LUMO_RETURN_SUCCESS, LUMO_RETURN_SUCCESS, LUMO_RETURN_UNKNOWN_ERROR});
  expectError<TolkCommandAccess>(kNotAvailableText, ExitCode::kQueryFailed);
}

TEST_F(CommandsTest, SummaryGoesOnWhenADeviceIsLostBeforeItsProcesses) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex",
                  {LUMO_RETURN_SUCCESS, LUMO_RETURN_SUCCESS, LUMO_RETURN_NOT_FOUND});
  TolkCommandAccess command(ParsedOptions{});
  const auto next = command.work();
  EXPECT_TRUE(next);
  EXPECT_FALSE(std::dynamic_pointer_cast<CommandError>(next));
  EXPECT_THAT(log_.of('E'),
              testing::Contains("queryMemoryInfo >> can not get device by id! expect id[ 0 ] "));
}

TEST_F(CommandsTest, SummaryOfOneDeviceCountsNone) {
  TolkCommandAccess command(ParsedOptions{{"-i", {"0"}}});
  EXPECT_FALSE(std::dynamic_pointer_cast<CommandError>(command.work()));
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryCountDevice"), 0);
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInitDeviceByIndex"), 3);
}

TEST_F(CommandsTest, SummaryTakesEachAdaptorThreeTimes) {
  fakeLumo().set("lumoLibraryCountDevice", 4u);
  TolkCommandAccess command(ParsedOptions{});
  EXPECT_FALSE(std::dynamic_pointer_cast<CommandError>(command.work()));
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInitDeviceByIndex"), 4 * 3);
}

TEST_F(CommandsTest, ListFailsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError<ListCommandAccess>("Error: failed to get the number of GPU device",
                                 ExitCode::kEnumerationFailed);
}

TEST_F(CommandsTest, ListFailsWhenADeviceIsLostBeforeItsLine) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex", {LUMO_RETURN_SUCCESS, LUMO_RETURN_NOT_FOUND});
  expectError<ListCommandAccess>("Error: failed to find the specified GPU device, index = 0",
                                 ExitCode::kBadArgument);
}

TEST_F(CommandsTest, ListFailsWhenTheUuidCannotBeRead) {
  fakeLumo().fail("lumoDeviceGetUUID", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError<ListCommandAccess>(kNotAvailableText, ExitCode::kUnsupported);
}

TEST_F(CommandsTest, ListFailsWhenTheTypeCannotBeRead) {
  fakeLumo().fail("lumoDeviceGetProperty",
                  {LUMO_RETURN_SUCCESS, LUMO_RETURN_SUCCESS, LUMO_RETURN_UNKNOWN_ERROR});
  expectError<ListCommandAccess>(kNotAvailableText, ExitCode::kUnsupported);
}

}  // namespace
}  // namespace tolk
