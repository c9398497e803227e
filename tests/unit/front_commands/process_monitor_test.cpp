#include "command_access/process_monitor_command_access.h"
#include "command_fixture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using tolk_test::fakeLumo;

constexpr unsigned long long kParent = 1ull << LUMO_PROPERTY_MPC_TYPE_SHIFT;

class ProcessMonitorTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    setDevices(1);
    fakeLumo().set("lumoMemoryGetTotal", 1000ull);
  }

  static std::shared_ptr<Step> run() { return ProcessMonitorCommandAccess(ParsedOptions{}).work(); }

  static void setProcesses(std::vector<LumoProcessMemUsage> processes) {
    fakeLumo().setList("lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages",
                       std::move(processes));
  }

  static LumoProcessMemUsage process(unsigned pid, unsigned long long bytes) {
    LumoProcessMemUsage usage{};
    usage.pid = pid;
    usage.gpuMemory = bytes;
    return usage;
  }

  static constexpr const char* kHead = "gpu  pid       memUtil   gpuUtil   \n";
  static constexpr const char* kLost = "Error: the requested operation is not available on target device.";
};

TEST_F(ProcessMonitorTest, AsksForSharesOnlyWhereThereAreProcesses) {
  EXPECT_EQ(printedBy<ProcessMonitorCommandAccess>(), "no running process\n");
  EXPECT_THAT(questions(), ElementsAre("lumoDeviceGetProperty(device 0)", "lumoMemoryGetTotal(memory 0)",
                                       "lumoDeviceCountProcessMemoryUsages(device 0)"));
}

TEST_F(ProcessMonitorTest, MpcParentIsAskedForItsTypeAlone) {
  fakeLumo().set("lumoDeviceGetProperty", kParent);
  setProcesses({process(42, 500)});
  EXPECT_EQ(printedBy<ProcessMonitorCommandAccess>(), "no running process\n");
  EXPECT_THAT(questions(), ElementsAre("lumoDeviceGetProperty(device 0)"));
}

TEST_F(ProcessMonitorTest, MemoryOfNoSizeIsTakenToNoPart) {
  fakeLumo().set("lumoMemoryGetTotal", 0ull);
  setProcesses({process(42, 500)});
  EXPECT_EQ(printedBy<ProcessMonitorCommandAccess>(),
            std::string(kHead) + "0    42        0%        0%        \n");
}

TEST_F(ProcessMonitorTest, SharesAreMatchedByPid) {
  setProcesses({process(42, 500), process(43, 999), process(44, 9)});
  LumoProcessGpuUtilization share{};
  share.pid = 43;
  share.gpu = 7;
  LumoProcessGpuUtilization stranger{};
  stranger.pid = 99;
  stranger.gpu = 80;
  fakeLumo().setList("lumoDeviceCountProcessGpuUtilizations", "lumoDeviceGetProcessGpuUtilizations",
                     std::vector{share, stranger});
  EXPECT_EQ(printedBy<ProcessMonitorCommandAccess>(), std::string(kHead) +
                                                          "0    42        50%       0%        \n"
                                                          "0    43        99%       7%        \n"
                                                          "0    44        0%        0%        \n");
}

TEST_F(ProcessMonitorTest, SharesThatCannotBeReadLeaveTheOtherColumns) {
  setProcesses({process(42, 500)});
  fakeLumo().fail("lumoDeviceCountProcessGpuUtilizations", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_EQ(printedBy<ProcessMonitorCommandAccess>(),
            std::string(kHead) + "0    42        50%       N/A       \n");
}

TEST_F(ProcessMonitorTest, FailsInItsOwnWordsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run(), "Error: failed to get the number of GPU device.", ExitCode::kEnumerationFailed);
}

TEST_F(ProcessMonitorTest, LostDeviceTypeMemoryOrProcessesEndIt) {
  for (const auto* call : {"lumoLibraryInitDeviceByIndex", "lumoDeviceGetProperty", "lumoMemoryGetTotal",
                           "lumoDeviceCountProcessMemoryUsages", "lumoDeviceGetProcessMemoryUsages"}) {
    SetUp();
    setProcesses({process(42, 500)});
    fakeLumo().fail(call, {LUMO_RETURN_UNKNOWN_ERROR});
    SCOPED_TRACE(call);
    expectError(run(), kLost, ExitCode::kUnsupported);
  }
}

}  // namespace
}  // namespace tolk
