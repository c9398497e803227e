#include <deque>
#include <limits>
#include <nlohmann/json.hpp>

#include "command_access/sablink_capabilities_command_access.h"
#include "command_access/sablink_err_counter_reset_command_access.h"
#include "command_access/sablink_error_counters_command_access.h"
#include "command_access/sablink_layout_command_access.h"
#include "command_access/sablink_remote_link_info_command_access.h"
#include "command_access/sablink_status_command_access.h"
#include "command_fixture.h"

namespace tolk {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::device;
using tolk_test::fakeLumo;

constexpr const char* kLost = "Error: the requested operation is not available on target device";
constexpr const char* kCountersLost = "Error: failed to query sablink error counters on target device";
constexpr const char* kLink99 = "99999999999999999999";

/// Two devices with two links each.
class SablinkTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    setHost();
  }

  static void setHost() {
    fakeLumo() = {};
    setDevices(2);
    for (const auto* missing : {"8", "9"}) {
      fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, " + std::string(missing) + ")",
                      std::deque<LumoReturn>(9, LUMO_RETURN_NOT_FOUND));
    }
    fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{2, 25000, 200});
    fakeLumo().set("lumoDeviceGetUUID(device 0, 48)", std::string("uuid-0"));
    fakeLumo().set("lumoDeviceGetUUID(device 1, 48)", std::string("uuid-1"));
  }

  template <class Command>
  static std::shared_ptr<Step> run(ParsedOptions options = {}) {
    return Command(std::move(options)).work();
  }

  /// What a command prints by itself.
  template <class Command>
  static std::string printedDirectlyBy(ParsedOptions options) {
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    EXPECT_EQ(run<Command>(std::move(options)), nullptr);
    std::cout.rdbuf(old);
    return text.str();
  }

  static void setType(unsigned number, unsigned long long property) {
    fakeLumo().set("lumoDeviceGetProperty(device " + std::to_string(number) + ")", property);
  }

  /// A hop is a pair of devices with the ports of their links.
  static void setPath(const std::vector<unsigned>& numbers) {
    LumoSablinkPath path{};
    for (const auto number : numbers) path.devices[path.deviceCount++] = device(number);
    fakeLumo().setList("lumoDeviceCountSablinkShortestPaths", "lumoDeviceGetSablinkShortestPaths",
                       std::vector{path});
  }
};

template <class Command>
class SablinkFormTest : public SablinkTest {};

using Forms = testing::Types<SablinkStatusCommandAccess, SablinkCapabilitiesCommandAccess,
                             SablinkRemoteLinkInfoCommandAccess, SablinkLayoutCommandAccess,
                             SablinkErrorCountersCommandAccess, SablinkErrCounterResetCommandAccess>;
TYPED_TEST_SUITE(SablinkFormTest, Forms);

TYPED_TEST(SablinkFormTest, WantsDevicesBeforeItLooksAtItsOptions) {
  fakeLumo().set("lumoLibraryCountDevice", 0u);
  this->expectError(this->template run<TypeParam>(), "Error: No OV GPU device found.", ExitCode::kNoDevice);
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  this->expectError(this->template run<TypeParam>({{"-i", {"0"}}}),
                    "Error: failed to get the number of GPU device", ExitCode::kEnumerationFailed);
}

template <class Command>
class SablinkLinksTest : public SablinkTest {};

using LinkForms = testing::Types<SablinkStatusCommandAccess, SablinkCapabilitiesCommandAccess>;
TYPED_TEST_SUITE(SablinkLinksTest, LinkForms);

TYPED_TEST(SablinkLinksTest, GpuWithoutLinksIsALineWithoutRows) {
  fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{});
  EXPECT_EQ(this->template printedBy<TypeParam>(),
            "GPU 0  : OVT B240 (UUID : uuid-0)\nGPU 1  : OVT B240 (UUID : uuid-1)\n");
}

TYPED_TEST(SablinkLinksTest, NameAndUuidThatCannotBeReadAreGaps) {
  fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{});
  fakeLumo().fail("lumoDeviceGetName", {LUMO_RETURN_UNKNOWN_ERROR});
  fakeLumo().fail("lumoDeviceGetUUID", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(this->template printedBy<TypeParam>({{"-i", {"0"}}}), "GPU 0  : N/A (UUID : N/A)\n");
}

TYPED_TEST(SablinkLinksTest, DeviceWithoutSablinkEndsIt) {
  for (const auto* call : {"lumoDeviceGetSablinkSpec(device 1)", "lumoDeviceGetSablinkSpec(device 0)"}) {
    fakeLumo().fail(call, {LUMO_RETURN_NOT_SUPPORTED});
    this->expectError(this->template run<TypeParam>(), kLost, ExitCode::kUnsupported);
  }
}

TYPED_TEST(SablinkLinksTest, LostDeviceEndsIt) {
  // The device is there while the order is worked out, and gone afterwards.
  fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)",
                  {LUMO_RETURN_SUCCESS, LUMO_RETURN_UNKNOWN_ERROR});
  this->expectError(this->template run<TypeParam>(), kLost, ExitCode::kUnsupported);
}

TYPED_TEST(SablinkLinksTest, FailsWhenTheOrderCannotBeWorkedOut) {
  fakeLumo().fail("lumoDeviceGetProperty(device 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  this->expectError(this->template run<TypeParam>(), "Error: failed to find GPU devices",
                    ExitCode::kEnumerationFailed);
}

TYPED_TEST(SablinkLinksTest, MissingDeviceIsNamed) {
  this->expectError(this->template run<TypeParam>({{"-i", {"9"}}}),
                    "Error: failed to find the specified GPU device, index = 9", ExitCode::kBadArgument);
  this->expectError(this->template run<TypeParam>({{"-i", {"4294967296"}}}),
                    "Error: failed to find the specified GPU device, index = 0", ExitCode::kBadArgument);
}

TEST_F(SablinkTest, StatesAsText) {
  fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{5, 0, 0});
  fakeLumo().set("lumoDeviceGetSablinkState(device 1, 0)", 1u);
  fakeLumo().set("lumoDeviceGetSablinkState(device 1, 1)", 2u);
  fakeLumo().set("lumoDeviceGetSablinkState(device 1, 2)", 0u);
  fakeLumo().set("lumoDeviceGetSablinkState(device 1, 3)", 3u);
  fakeLumo().fail("lumoDeviceGetSablinkState(device 1, 4)", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(printedBy<SablinkStatusCommandAccess>({{"-i", {"1"}}}),
            "GPU 1  : OVT B240 (UUID : uuid-1)\n"
            "Link 0: LINK UP   \n"
            "Link 1: LINK DOWNGRADE\n"
            "Link 2: LINK DOWN \n"
            "Link 3: LINK DOWN \n"
            "Link 4: N/A       \n");
}

TEST_F(SablinkTest, StatusAsksTheFirstDeviceOfAListAlone) {
  EXPECT_EQ(printedBy<SablinkStatusCommandAccess>({{"-i", {"1,0"}}}),
            "GPU 1  : OVT B240 (UUID : uuid-1)\nLink 0: LINK DOWN \nLink 1: LINK DOWN \n");
}

TEST_F(SablinkTest, StatusOfOneLinkAlone) {
  fakeLumo().set("lumoDeviceGetSablinkState", 1u);
  EXPECT_EQ(printedBy<SablinkStatusCommandAccess>({{"-i", {"0"}}, {"-l", {"1"}}}),
            "GPU 0  : OVT B240 (UUID : uuid-0)\nLink 1: LINK UP   \n");
}

TEST_F(SablinkTest, InstancesFollowTheirParent) {
  setDevices(3);
  setType(0, 1 << LUMO_PROPERTY_MPC_TYPE_SHIFT);
  setType(2, 2 << LUMO_PROPERTY_MPC_TYPE_SHIFT);
  fakeLumo().setList("lumoDeviceCountMpcInstances(device 0)", "lumoDeviceGetMpcInstances",
                     std::vector{device(2)});
  fakeLumo().set("lumoDeviceGetIndex(device 2)", 2u);
  fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{});
  EXPECT_EQ(printedBy<SablinkStatusCommandAccess>(),
            "GPU 0  : OVT B240 (UUID : uuid-0)\n"
            "GPU 2  : OVT B240 (UUID : 00000000-0000-0000-0000-000000000001)\n"
            "GPU 1  : OVT B240 (UUID : uuid-1)\n");
}

TEST_F(SablinkTest, CapabilitiesAsText) {
  fakeLumo().set("lumoDeviceGetSablinkCapStatus(device 0, 0, 0)", 1u);
  fakeLumo().set("lumoDeviceGetSablinkCapStatus(device 0, 0, 1)", 0u);
  fakeLumo().set("lumoDeviceGetSablinkCapStatus(device 0, 1, 0)", 2u);
  fakeLumo().fail("lumoDeviceGetSablinkCapStatus(device 0, 1, 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(printedBy<SablinkCapabilitiesCommandAccess>({{"-i", {"0"}}}),
            "GPU 0  : OVT B240 (UUID : uuid-0)\n"
            "Link 0: P2P_ACCESS: true      \n"
            "Link 0: P2P_ATOMIC: false     \n"
            "Link 1: P2P_ACCESS: false     \n"
            "Link 1: P2P_ATOMIC: N/A       \n");
}

TEST_F(SablinkTest, RemoteDeviceOfALink) {
  fakeLumo().set("lumoDeviceGetSablinkRemoteDevice(device 0, 3)", device(1));
  fakeLumo().set("lumoDeviceGetIndex(device 1)", 1u);
  EXPECT_EQ(printedDirectlyBy<SablinkRemoteLinkInfoCommandAccess>({{"-i", {"0,1"}}, {"-l", {"3"}}}),
            "The remote device of link3 in GPU0 is GPU1(UUID:uuid-1).\n");
}

TEST_F(SablinkTest, RemoteDeviceNeedsAGpuAndALink) {
  const char* const noGpu = "Error: please specify one GPU device by option -i or --id.";
  expectError(run<SablinkRemoteLinkInfoCommandAccess>(), noGpu, ExitCode::kBadArgument);
  expectError(run<SablinkRemoteLinkInfoCommandAccess>({{"-l", {"0"}}}), noGpu, ExitCode::kBadArgument);
  expectError(run<SablinkRemoteLinkInfoCommandAccess>({{"-i", {"9"}}}),
              "Error: please specify one Sablink by option -l or --link.", ExitCode::kBadArgument);
  expectError(run<SablinkRemoteLinkInfoCommandAccess>({{"-i", {"9"}}, {"-l", {"0"}}}),
              "Error: failed to find the specified GPU device, index = 9", ExitCode::kBadArgument);
}

TEST_F(SablinkTest, RemoteDeviceThatCannotBeToldIsNotAvailable) {
  for (const auto* call : {"lumoDeviceGetSablinkRemoteDevice(device 0, 1)", "lumoDeviceGetIndex(device 1)",
                           "lumoLibraryInitDeviceByIndex(library 0, 1)", "lumoDeviceGetUUID(device 1, 48)"}) {
    setHost();
    fakeLumo().set("lumoDeviceGetSablinkRemoteDevice(device 0, 1)", device(1));
    fakeLumo().set("lumoDeviceGetIndex(device 1)", 1u);
    fakeLumo().fail(call, {LUMO_RETURN_UNKNOWN_ERROR});
    SCOPED_TRACE(call);
    expectError(run<SablinkRemoteLinkInfoCommandAccess>({{"-i", {"0"}}, {"-l", {"1"}}}), kLost,
                ExitCode::kUnsupported);
  }
}

TEST_F(SablinkTest, LinkBeyond32BitsIsNeverASmallerOne) {
  for (const auto* link : {"4294967296", "4294967295", kLink99}) {
    fakeLumo().lines.clear();
    EXPECT_TRUE(printedBy<SablinkErrorCountersCommandAccess>({{"-i", {"0"}}, {"-l", {link}}})
                    .ends_with("\nLink 4294967295: fec correction count: 0         \n"));
    EXPECT_THAT(questions(), Contains("lumoDeviceGetSablinkErrorCounter(device 0, 4294967295, 0)"));
    EXPECT_TRUE(printedBy<SablinkErrCounterResetCommandAccess>({{"-i", {"0"}}, {"-l", {link}}})
                    .ends_with("\nLink 4294967295: error counters reset\n"));
    fakeLumo().fail("lumoDeviceGetSablinkRemoteDevice(device 0, 4294967295)", {LUMO_RETURN_INVALID_ARGUMENT});
    expectError(run<SablinkRemoteLinkInfoCommandAccess>({{"-i", {"0"}}, {"-l", {link}}}), kLost,
                ExitCode::kUnsupported);
  }
}

TEST_F(SablinkTest, LayoutOfAPathOfTwoHops) {
  setDevices(3);
  setPath({0, 2, 1});
  for (unsigned i = 1; i < 3; ++i) {
    fakeLumo().set("lumoDeviceGetIndex(device " + std::to_string(i) + ")", i);
  }
  fakeLumo().setList("lumoDeviceCountSablinkLayouts(device 0, device 2)",
                     "lumoDeviceGetSablinkLayouts(device 0, device 2, 2)",
                     std::vector{LumoSablinkLayout{0, 3}, LumoSablinkLayout{15, 2}});
  fakeLumo().setList("lumoDeviceCountSablinkLayouts(device 2, device 1)",
                     "lumoDeviceGetSablinkLayouts(device 2, device 1, 1)",
                     std::vector{LumoSablinkLayout{4, 5}});
  EXPECT_EQ(printedBy<SablinkLayoutCommandAccess>({{"-i", {"0,1"}}}),
            "nearest path\n"
            "local device      remote device         link ports(local,remote)\n"
            "0                 2                     (0,3),(15,2)\n"
            "2                 1                     (4,5)\n");
}

TEST_F(SablinkTest, LayoutNeedsTwoDevices) {
  for (const auto* ids : {"0", "0,1,2", "0,1,", ""}) {
    expectError(run<SablinkLayoutCommandAccess>({{"-i", {ids}}}),
                "Error: please specify local device and remote device by option -i or --id.",
                ExitCode::kBadArgument);
  }
  expectError(run<SablinkLayoutCommandAccess>(),
              "Error: please specify local device and remote device by option -i or --id.",
              ExitCode::kBadArgument);
}

TEST_F(SablinkTest, LayoutNeedsTwoDifferentDevices) {
  for (const auto* ids : {"1,1", "9,9"}) {
    expectError(run<SablinkLayoutCommandAccess>({{"-i", {ids}}}),
                "Error: please specify two different devices", ExitCode::kBadArgument);
  }
}

TEST_F(SablinkTest, LayoutNamesTheDeviceThatIsMissing) {
  const auto missing = [](const std::string& index) {
    return "Error: failed to find the specified GPU device, index = " + index;
  };
  expectError(run<SablinkLayoutCommandAccess>({{"-i", {"8,9"}}}), missing("8"), ExitCode::kBadArgument);
  expectError(run<SablinkLayoutCommandAccess>({{"-i", {"1,9"}}}), missing("9"), ExitCode::kBadArgument);
  expectError(run<SablinkLayoutCommandAccess>({{"-i", {"1,4294967296"}}}), missing("0"),
              ExitCode::kBadArgument);
  // Both are too large to be told apart as numbers.
  expectError(run<SablinkLayoutCommandAccess>({{"-i", {"99999999999999999999,88888888888888888888"}}}),
              missing("-1"), ExitCode::kBadArgument);
}

TEST_F(SablinkTest, LayoutWithoutAConnection) {
  expectError(run<SablinkLayoutCommandAccess>({{"-i", {"0,1"}}}),
              "Info: there is no connection between the specified two devices", ExitCode::kQueryFailed);
}

TEST_F(SablinkTest, LayoutThatCannotBeReadIsNotAvailable) {
  for (const auto* call :
       {"lumoDeviceCountSablinkShortestPaths(device 0, device 1)",
        "lumoDeviceCountSablinkLayouts(device 0, device 1)", "lumoDeviceGetIndex(device 1)"}) {
    setHost();
    setPath({0, 1});
    fakeLumo().fail(call, {LUMO_RETURN_NOT_FOUND});
    SCOPED_TRACE(call);
    expectError(run<SablinkLayoutCommandAccess>({{"-i", {"0,1"}}}), kLost, ExitCode::kUnsupported);
  }
}

TEST_F(SablinkTest, ErrorCountersOfSeveralDevices) {
  fakeLumo().set("lumoDeviceGetSablinkErrorCounter(device 1, 1, 0)", 7ull);
  fakeLumo().set("lumoDeviceGetSablinkErrorCounter(device 1, 1, 1)",
                 std::numeric_limits<unsigned long long>::max());
  fakeLumo().fail("lumoDeviceGetSablinkErrorCounter(device 1, 1, 2)", {LUMO_RETURN_UNKNOWN_ERROR});
  fakeLumo().set("lumoDeviceGetSablinkErrorCounter(device 1, 1, 3)", 12345678901ull);
  EXPECT_EQ(printedBy<SablinkErrorCountersCommandAccess>({{"-i", {"1", "0"}}, {"-l", {"1"}}}),
            "GPU 1  : OVT B240 (UUID : uuid-1)\n"
            "Link 1: replay errors: 7         \n"
            "Link 1: recovery errors: 18446744073709551615\n"
            "Link 1: framing errors: N/A       \n"
            "Link 1: fec correction count: 12345678901\n"
            "GPU 0  : OVT B240 (UUID : uuid-0)\n"
            "Link 1: replay errors: 0         \n"
            "Link 1: recovery errors: 0         \n"
            "Link 1: framing errors: 0         \n"
            "Link 1: fec correction count: 0         \n");
}

TEST_F(SablinkTest, ErrorCountersOfEveryLinkInTheirOrder) {
  fakeLumo().set("lumoLibraryCountDevice", 1u);
  EXPECT_TRUE(run<SablinkErrorCountersCommandAccess>());
  EXPECT_THAT(
      questions(),
      ElementsAre("lumoDeviceGetProperty(device 0)", "lumoDeviceGetSablinkSpec(device 0)",
                  "lumoDeviceGetName(device 0, 256)", "lumoDeviceGetProperty(device 0)",
                  "lumoDeviceGetUUID(device 0, 48)", "lumoDeviceGetSablinkErrorCounter(device 0, 0, 0)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 0, 1)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 0, 2)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 0, 3)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 1, 0)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 1, 1)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 1, 2)",
                  "lumoDeviceGetSablinkErrorCounter(device 0, 1, 3)"));
}

TEST_F(SablinkTest, ErrorCountersOfADeviceThatIsNotThere) {
  for (const auto* index : {"9", "4294967296"}) {
    expectError(run<SablinkErrorCountersCommandAccess>({{"-i", {"0", index}}}),
                "Error: the given device id is not legal", ExitCode::kBadArgument);
    EXPECT_THAT(log_.of('E'), Contains("selectDevices >> failed to get device by id! expect id[ " +
                                       std::string(index) + " ] "));
  }
  EXPECT_THAT(questions(), IsEmpty());
}

TEST_F(SablinkTest, ErrorCountersLeaveOutDevicesWithoutLinks) {
  fakeLumo().fail("lumoDeviceGetSablinkSpec(device 0)", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_TRUE(printedBy<SablinkErrorCountersCommandAccess>().starts_with("GPU 1  : "));
  const std::string line =
      "querySablinkErrorCounters >> get device sablink error counters not support on current device! device "
      "id[ ";
  EXPECT_THAT(log_.of('E'), Contains(line + "0 ] "));

  log_.lines.clear();
  fakeLumo().set("lumoDeviceGetSablinkSpec(device 1)", LumoSablinkSpec{});
  EXPECT_TRUE(printedBy<SablinkErrorCountersCommandAccess>({{"-l", {"0"}}}).starts_with("GPU 0  : "));
  EXPECT_THAT(log_.of('E'), ElementsAre(line + "1 ] "));
}

TEST_F(SablinkTest, ErrorCountersWithoutAnyDeviceLeft) {
  fakeLumo().set("lumoDeviceGetSablinkSpec", LumoSablinkSpec{});
  EXPECT_EQ(printedBy<SablinkErrorCountersCommandAccess>(), "no sablink error counters info.\n");
}

TEST_F(SablinkTest, ErrorCountersEndWhereLinksCannotBeCounted) {
  fakeLumo().fail("lumoDeviceGetSablinkSpec(device 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run<SablinkErrorCountersCommandAccess>(), kCountersLost, ExitCode::kQueryFailed);
  EXPECT_THAT(
      log_.of('E'),
      Contains("querySablinkErrorCounters >> failed to get device sablink specification! device id[ 1 ] "));
}

TEST_F(SablinkTest, ErrorCountersEndWithALostDevice) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)",
                  {LUMO_RETURN_SUCCESS, LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run<SablinkErrorCountersCommandAccess>(), kCountersLost, ExitCode::kQueryFailed);
  EXPECT_THAT(log_.of('E'),
              Contains("querySablinkErrorCounters >> failed to get device by id! expect id[ 1 ] "));
}

TEST_F(SablinkTest, ErrorCountersFailWhenTheOrderCannotBeWorkedOut) {
  fakeLumo().fail("lumoDeviceGetProperty", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run<SablinkErrorCountersCommandAccess>(), "Error: failed to find GPU devices",
              ExitCode::kEnumerationFailed);
}

TEST_F(SablinkTest, ResetTellsEachLink) {
  fakeLumo().fail("lumoDeviceResetSablinkErrorCounter(device 1, 0)", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(printedBy<SablinkErrCounterResetCommandAccess>({{"-i", {"1", "0"}}}),
            "GPU 1  : OVT B240 (UUID : uuid-1)\n"
            "Link 0: error counters reset failed\n"
            "Link 1: error counters reset\n");
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceResetSablinkErrorCounter"), 2);
}

TEST_F(SablinkTest, ResetOfOneLinkAlone) {
  EXPECT_EQ(printedBy<SablinkErrCounterResetCommandAccess>({{"-i", {"0"}}, {"-l", {"1"}}}),
            "GPU 0  : OVT B240 (UUID : uuid-0)\nLink 1: error counters reset\n");
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceResetSablinkErrorCounter"), 1);
}

TEST_F(SablinkTest, ResetNeedsAGpuThatIsThere) {
  expectError(run<SablinkErrCounterResetCommandAccess>({{"-l", {"0"}}}),
              "Error: please specify one GPU device by option -i or --id.", ExitCode::kBadArgument);
  expectError(run<SablinkErrCounterResetCommandAccess>({{"-i", {"4294967297"}}}),
              "Error: failed to find the specified GPU device, index = 1", ExitCode::kBadArgument);
}

TEST_F(SablinkTest, ResetIsForPhysicalDevicesAlone) {
  for (const unsigned long long property :
       {1ull << LUMO_PROPERTY_ROLE_SHIFT, 1ull << LUMO_PROPERTY_MPC_TYPE_SHIFT,
        2ull << LUMO_PROPERTY_MPC_TYPE_SHIFT}) {
    setType(0, property);
    expectError(run<SablinkErrCounterResetCommandAccess>({{"-i", {"0"}}}),
                "Error: reset sablink error counters is only supported for physical device",
                ExitCode::kUnsupported);
  }
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceResetSablinkErrorCounter"), 0);
}

TEST_F(SablinkTest, ResetNeedsTheNumberOfLinks) {
  for (const auto ret : {LUMO_RETURN_NOT_SUPPORTED, LUMO_RETURN_UNKNOWN_ERROR}) {
    fakeLumo().fail("lumoDeviceGetSablinkSpec", {ret});
    expectError(run<SablinkErrCounterResetCommandAccess>({{"-i", {"0"}}, {"-l", {"0"}}}),
                "Error: failed to reset sablink error counters on target device", ExitCode::kUnsupported);
  }
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceResetSablinkErrorCounter"), 0);
}

}  // namespace
}  // namespace tolk
