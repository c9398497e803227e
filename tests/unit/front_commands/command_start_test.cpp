#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_error.h"
#include "fake_lumo.h"

namespace tolk {
namespace {

using tolk_test::fakeLumo;

/// The start of a command, step by step.
class StartedCommand : public CommandAccessBase {
 public:
  StartedCommand() : CommandAccessBase({}) {}

  std::shared_ptr<Step> work() override { return startLibrary(); }

  using CommandAccessBase::accessFactory;
  using CommandAccessBase::countDevices;
  using CommandAccessBase::listDevices;
  using CommandAccessBase::noSuchDevice;
};

void expectError(const std::shared_ptr<Step>& step, const std::string& message, ExitCode code) {
  const auto error = std::dynamic_pointer_cast<CommandError>(step);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->message, message);
  EXPECT_EQ(error->code, code);
}

class CommandStartTest : public testing::Test {
 protected:
  void SetUp() override { fakeLumo() = {}; }

  StartedCommand command_;
  std::uint32_t count_ = 0;
  std::vector<std::uint32_t> indices_;
};

TEST_F(CommandStartTest, SuccessIsNull) {
  EXPECT_EQ(command_.work(), nullptr);
  fakeLumo().set("lumoLibraryCountDevice", 3u);
  EXPECT_EQ(command_.countDevices({}, count_), nullptr);
  EXPECT_EQ(count_, 3u);
  EXPECT_EQ(command_.listDevices({}, indices_), nullptr);
  EXPECT_THAT(indices_, testing::ElementsAre(0, 1, 2));
}

TEST_F(CommandStartTest, LibraryThatCannotCountIsToldInTheCommandsWords) {
  command_.work();
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR, LUMO_RETURN_UNKNOWN_ERROR});
  expectError(command_.countDevices({}, count_), "Error: failed to get the number of GPU device",
              ExitCode::kEnumerationFailed);
  expectError(command_.listDevices({.noCount = {"no count", ExitCode::kOperationFailed}}, indices_),
              "no count", ExitCode::kOperationFailed);
}

TEST_F(CommandStartTest, NoDeviceIsToldInTheCommandsWords) {
  command_.work();
  fakeLumo().set("lumoLibraryCountDevice", 0u);
  expectError(command_.countDevices({}, count_), "Error: No OV GPU device found.", ExitCode::kNoDevice);
  expectError(command_.listDevices({.noDevice = {"none", ExitCode::kEnumerationFailed}}, indices_), "none",
              ExitCode::kEnumerationFailed);
}

TEST_F(CommandStartTest, NoOrderIsToldInTheCommandsWords) {
  command_.work();
  fakeLumo().fail("lumoDeviceGetProperty", {LUMO_RETURN_UNKNOWN_ERROR, LUMO_RETURN_UNKNOWN_ERROR});
  expectError(command_.listDevices({}, indices_), "Error: failed to find GPU devices",
              ExitCode::kEnumerationFailed);
  expectError(command_.listDevices({.noOrder = {"no order", ExitCode::kUnsupported}}, indices_), "no order",
              ExitCode::kUnsupported);
}

TEST_F(CommandStartTest, RepeatMakesAFreshFactoryAndReopensTheLibrary) {
  command_.work();
  const std::weak_ptr<LumoAccessFactory> first = command_.accessFactory;
  command_.work();
  EXPECT_TRUE(first.expired());
  EXPECT_THAT(fakeLumo().calls,
              testing::ElementsAre("lumoLibraryInit", "lumoLibraryInitSystem", "lumoLibraryFreeSystem",
                                   "lumoLibraryShutDown", "lumoLibraryInit", "lumoLibraryInitSystem"));
}

TEST_F(CommandStartTest, IndexIsShownAsThirtyTwoBits) {
  const std::string text = "Error: failed to find the specified GPU device, index = ";
  expectError(StartedCommand::noSuchDevice(7), text + "7", ExitCode::kBadArgument);
  expectError(StartedCommand::noSuchDevice(4294967295), text + "-1", ExitCode::kBadArgument);
  expectError(StartedCommand::noSuchDevice(4294967297), text + "1", ExitCode::kBadArgument);
}

}  // namespace
}  // namespace tolk
