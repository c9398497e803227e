// The command mpc and its tables, where no simulated host can bring them.
#include <nlohmann/json.hpp>

#include "command_access/mpc_command_access.h"
#include "command_fixture.h"
#include "command_output/mpc_output.h"

namespace tolk {
namespace {

using testing::IsEmpty;
using tolk_test::fakeLumo;

constexpr const char* kLost = "Error: the requested operation is not available on target device";

class MpcTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    setDevices(2);
  }
};

TEST_F(MpcTest, WithoutAFormIsRefused) {
  expectError(MpcCommandAccess(ParsedOptions{{"-i", {"0"}}}).work(), "Error: not support this command",
              ExitCode::kUnsupported);
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(MpcTest, DeviceThatIsCountedAndCannotBeHadIsNotAvailable) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)", {LUMO_RETURN_NOT_FOUND});
  expectError(MpcCommandAccess(ParsedOptions{{"-i", {"1"}}, {"-disable", {}}}).work(), kLost,
              ExitCode::kUnsupported);
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(MpcTest, DeviceWhoseTypeCannotBeReadIsNoParent) {
  fakeLumo().fail("lumoDeviceGetProperty(device 0)", {LUMO_RETURN_BUSY});
  expectError(MpcCommandAccess(ParsedOptions{{"-i", {"0"}}, {"-lmi", {}}}).work(),
              "Error: target device is not mpc parent", ExitCode::kUnsupported);
}

TEST_F(MpcTest, FirstOfSeveralFormsIsTheOneThatCounts) {
  const ParsedOptions every{{"-i", {"1"}},  {"-lmi", {}},     {"-lmc", {}},
                            {"-cm", {"3"}}, {"-disable", {}}, {"-enable", {}}};
  fakeLumo().fail("lumoDeviceSetMpcMode(device 1, 1)", {LUMO_RETURN_BUSY});
  expectError(MpcCommandAccess(every).work(), kLost, ExitCode::kUnsupported);
  EXPECT_THAT(questions(), testing::ElementsAre("lumoDeviceSetMpcMode(device 1, 1)"));
}

TEST_F(MpcTest, CombinationLongerThanTheRecordIsCut) {
  LumoMpcConfiguration configuration{};
  configuration.profileCount = 4'000'000'000;
  fakeLumo().setList("lumoDeviceCountSupportedMpcConfigurations", "lumoDeviceGetSupportedMpcConfigurations",
                     std::vector{configuration});
  const auto text = printedBy<MpcCommandAccess>({{"-i", {"0"}}, {"-lmc", {}}});
  EXPECT_EQ(std::ranges::count(text, ','), 2 * (LUMO_MPC_MAX_INSTANCES - 1));
}

TEST_F(MpcTest, LongNamesPushTheCellsBehindThem) {
  nlohmann::ordered_json document;
  document["instance"]["0"] = {{"ParentIndex", "1"},
                               {"InstanceId", "2"},
                               {"Name", "name-of-17-letter"},
                               {"ProfileID", "3"},
                               {"DeviceID", "4"}};
  MpcOutput output(std::move(document));
  EXPECT_EQ(printed(output),
            "----------------------------------------------------\n"
            "ID   Profile Name   ProfileID Parent ID InstanceID  \n"
            "----------------------------------------------------\n"
            "0    name-of-17-letter3         1         2           \n"
            "----------------------------------------------------\n");
}

}  // namespace
}  // namespace tolk
