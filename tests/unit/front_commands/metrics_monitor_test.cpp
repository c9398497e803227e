#include <nlohmann/json.hpp>

#include "command_access/metrics_monitor_command_access.h"
#include "command_fixture.h"
#include "command_output/metrics_monitor_output.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::fakeLumo;

class MetricsMonitorTest : public tolk_test::CommandFixture {
 protected:
  static std::shared_ptr<Step> run(const std::string& fields, ParsedOptions options = {}) {
    options["-mm"] = {fields};
    return MetricsMonitorCommandAccess(std::move(options)).work();
  }

  static constexpr const char* kLost = "Error: the requested operation is not available on target device.";
};

TEST_F(MetricsMonitorTest, AsksForNothingButTheSelectedFields) {
  const std::string state = "lumoDeviceGetPerformanceState(device 0)";
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"GpuId,Temp", {"lumoGpuGetTemperature(gpu 0)"}},
      {"Power,GpuId", {"lumoDeviceGetPowerUsage(device 0)"}},
      {"Freq,GpuId,Time", {"lumoGpuGetClock(gpu 0)"}},
      {"GpuId,SlowdownCnt", {"lumoGpuGetThermalSlowdownStatistics(gpu 0)"}},
      {"GpuId,TotalSlowdownTimeMs", {"lumoGpuGetThermalSlowdownStatistics(gpu 0)"}},
      {"Freq,TotalSlowdownTimeMs,SlowdownCnt,GpuId",
       {"lumoGpuGetThermalSlowdownStatistics(gpu 0)", "lumoGpuGetClock(gpu 0)"}},
      {"Temp,GpuId,Temp,GpuId", {"lumoGpuGetTemperature(gpu 0)"}},
  };
  for (auto [fields, expected] : rows) {
    fakeLumo() = {};
    EXPECT_TRUE(std::dynamic_pointer_cast<MetricsMonitorOutput>(run(fields))) << fields;
    expected.insert(expected.begin(), state);
    expected.push_back(state);
    EXPECT_EQ(questions(), expected) << fields;
  }
}

TEST_F(MetricsMonitorTest, TakesTheAdaptorsOfTheChosenDevicesAlone) {
  setDevices(4);
  EXPECT_TRUE(std::dynamic_pointer_cast<MetricsMonitorOutput>(run("GpuId,Temp", {{"-i", {"3,1"}}})));
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInitDeviceByIndex"), 2);
  EXPECT_THAT(
      questions(),
      ElementsAre("lumoDeviceGetPerformanceState(device 3)", "lumoGpuGetTemperature(gpu 3)",
                  "lumoDeviceGetPerformanceState(device 3)", "lumoDeviceGetPerformanceState(device 1)",
                  "lumoGpuGetTemperature(gpu 1)", "lumoDeviceGetPerformanceState(device 1)"));
}

TEST_F(MetricsMonitorTest, FailsInItsOwnWordsWhenTheDevicesCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run("GpuId,Temp"), "Error: failed to get the number of GPU device.",
              ExitCode::kEnumerationFailed);
}

TEST_F(MetricsMonitorTest, LostDeviceEndsIt) {
  setDevices(2);
  fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)", {LUMO_RETURN_NOT_FOUND});
  expectError(run("GpuId,Temp"), kLost, ExitCode::kQueryFailed);
}

TEST_F(MetricsMonitorTest, WrongFieldOrIndexEndsItBeforeAnyDeviceIsTouched) {
  expectError(run("GpuId,Temp,Foo"), "Error: the requested field \"Foo\" is not valid",
              ExitCode::kBadArgument);
  expectError(run("GpuId,Temp", {{"-i", {"0,7"}}}), "Error: the requested GPU ID 7 is out of range",
              ExitCode::kBadArgument);
  EXPECT_THAT(questions(), IsEmpty());
  EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInitDeviceByIndex"), 0);
}

TEST_F(MetricsMonitorTest, RunsAsOftenAsALoopAsks) {
  MetricsMonitorCommandAccess command(ParsedOptions{{"-mm", {"GpuId,Temp"}}});
  for (int run = 1; run <= 3; ++run) {
    EXPECT_TRUE(std::dynamic_pointer_cast<MetricsMonitorOutput>(command.work()));
    EXPECT_EQ(fakeLumo().timesCalled("lumoGpuGetTemperature"), run);
    EXPECT_EQ(fakeLumo().timesCalled("lumoLibraryInit"), run);
  }
}

TEST_F(MetricsMonitorTest, HeadIsPrintedOnceInAProcess) {
  const Json document{{"0", {{"GpuId", "0"}, {"Temp", "45"}}}, {"1", {{"GpuId", "1"}, {"Temp", "N/A"}}}};
  const auto print = [&] {
    MetricsMonitorOutput output(document, {"GpuId", "Temp", "GpuId"});
    return printed(output);
  };
  // Without any devices there is no head either.
  MetricsMonitorOutput empty(Json::object(), {"GpuId", "Temp"});
  EXPECT_EQ(printed(empty), "no metrics monitor\n");
  EXPECT_EQ(print(), "GpuId, Temp, GpuId\n0, 45, 0\n1, N/A, 1\n");
  EXPECT_EQ(print(), "0, 45, 0\n1, N/A, 1\n");
  EXPECT_EQ(printed(empty), "no metrics monitor\n");
}

}  // namespace
}  // namespace tolk
