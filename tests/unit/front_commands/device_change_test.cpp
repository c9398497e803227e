// The commands that change devices, where no simulated host can bring them: a device that is counted and
// cannot be had, one whose type cannot be read, and what the command line never passes on.
#include "command_access/ecc_config_command_access.h"
#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/power_limit_command_access.h"
#include "command_access/reset_gpu_command_access.h"
#include "command_fixture.h"

namespace tolk {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tolk_test::fakeLumo;

constexpr const char* kResetFailed = "Error: failed to reset with the given option";
constexpr unsigned kMilliwatts = 1000;

/// Two physical devices that take from 100 to 300 watts.
class DeviceChangeTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    setDevices(2);
    fakeLumo().set("lumoDeviceGetPowerLimitConstraints", 100 * kMilliwatts, 300 * kMilliwatts);
  }

  static void loseDevice(const std::string& number) {
    fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, " + number + ")", {LUMO_RETURN_NOT_FOUND});
  }

  /// Both devices, as a command would have them.
  DeviceChangeCommandAccess::Targets targets() {
    EXPECT_EQ(factory_->initializeLumo(), LUMO_RETURN_SUCCESS);
    DeviceChangeCommandAccess::Targets found;
    for (std::uint32_t index = 0; index < 2; ++index) {
      found.push_back({.index = index, .device = factory_->getAccessDeviceById(index)});
    }
    fakeLumo().lines.clear();
    return found;
  }

  const std::shared_ptr<LumoAccessFactory> factory_ = std::make_shared<LumoAccessFactory>();
};

TEST_F(DeviceChangeTest, ResetEndsWhenADevicesTypeCannotBeRead) {
  fakeLumo().fail("lumoDeviceGetProperty(device 0)", {LUMO_RETURN_BUSY});
  expectError(ResetGpuCommandAccess(ParsedOptions{{"-r", {"0"}}}).runReset(targets()), kResetFailed,
              ExitCode::kOperationFailed);
  EXPECT_THAT(log_.lines, Contains(HasSubstr("get device type failed")));
  EXPECT_THAT(questions(), testing::Not(Contains(HasSubstr("Reset"))));
}

TEST_F(DeviceChangeTest, EccWithoutIndexEndsWhenADeviceCannotBeHad) {
  loseDevice("1");
  expectError(EccConfigCommandAccess(ParsedOptions{{"-e", {"1"}}}).work(),
              "Error: the requested operation is not available on target device", ExitCode::kUnsupported);
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(DeviceChangeTest, PowerLimitWithoutItsOptionIsRefused) {
  expectError(PowerLimitCommandAccess(ParsedOptions{}).work(), "Error: missing -pl parameter",
              ExitCode::kBadArgument);
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(DeviceChangeTest, PowerLimitEndsWhenADevicesTypeCannotBeRead) {
  fakeLumo().fail("lumoDeviceGetProperty(device 0)", {LUMO_RETURN_BUSY});
  expectError(PowerLimitCommandAccess(ParsedOptions{{"-pl", {"200"}}}).work(), kResetFailed,
              ExitCode::kOperationFailed);
  EXPECT_THAT(log_.lines, Contains(HasSubstr("get device type failed")));
  EXPECT_THAT(questions(), ElementsAre("lumoDeviceGetProperty(device 0)"));
}

TEST_F(DeviceChangeTest, PowerLimitEndsBeforeAnyChangeWhenADeviceCannotBeHad) {
  loseDevice("1");
  expectError(PowerLimitCommandAccess(ParsedOptions{{"-pl", {"200"}}}).work(),
              "Error: failed to find the specified GPU device.", ExitCode::kBadArgument);
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(DeviceChangeTest, PowerLimitIsRoundedToTheNearestMilliwatt) {
  EXPECT_EQ(PowerLimitCommandAccess::runSet(targets(), 250.4006, true), nullptr);
  EXPECT_THAT(questions(), Contains("lumoDeviceSetPowerLimitWithPersistentOption(device 0, 250401, 1)"));
}

}  // namespace
}  // namespace tolk
