#include "in_process/lumo_fixture.h"

// The graphics and compute engine.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class GpuOperationsTest : public LumoFixture {
 protected:
  unsigned number_ = 99;
  unsigned other_ = 99;
  int degrees_ = 99;
};

kelp::GpuStatus busy() {
  kelp::GpuStatus status;
  status.utilization = 250.0F;
  status.engine0 = 10.9F;
  status.engine1 = 20.0F;
  status.engine2 = 30.0F;
  status.engine3 = KelpReturn::kNotSupported;
  status.memoryBusy = 40.9F;
  status.coreMax = 60.0F;
  status.coreAverage = 50.0F;
  return status;
}

TEST_F(GpuOperationsTest, SharesAreWholePercent) {
  platform_.answer<kelp::QueryGpuStatusCmd>(busy());
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoGpu* const own = gpu(handle_);
  EXPECT_EQ(lumoGpuGetUtilization(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 100U) << "never more";
  for (const unsigned engine : {0U, 1U, 2U}) {
    EXPECT_EQ(lumoGpuGetEngineUtilization(own, engine, &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, 10 * (engine + 1));
  }
  EXPECT_EQ(lumoGpuGetEngineUtilization(own, 3, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoGpuGetCoreUtilization(own, 0, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 50U) << "mean";
  EXPECT_EQ(lumoGpuGetCoreUtilization(own, 1, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 60U) << "busiest";
  EXPECT_EQ(lumoGpuGetMemoryControllerUtilization(own, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 40U);
}

TEST_F(GpuOperationsTest, NumbersThatFitNowhereAreTheNearestOnes) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  const std::pair<float, unsigned> shares[] = {
      {-5.0F, 0}, {1e30F, ~0U}, {std::numeric_limits<float>::quiet_NaN(), 0}};
  for (const auto& [value, shown] : shares) {
    kelp::GpuStatus status;
    status.memoryBusy = value;
    platform_.answer<kelp::QueryGpuStatusCmd>(status);
    EXPECT_EQ(lumoGpuGetMemoryControllerUtilization(gpu(handle_), &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, shown) << value;
  }
  const std::pair<float, int> temperatures[] = {{-1e30F, std::numeric_limits<int>::min()},
                                                {1e30F, std::numeric_limits<int>::max()},
                                                {std::numeric_limits<float>::quiet_NaN(), 0}};
  for (const auto& [value, shown] : temperatures) {
    platform_.answer<kelp::QueryTemperCmd>(value);
    EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &degrees_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(degrees_, shown) << value;
  }
}

TEST_F(GpuOperationsTest, EachSensorHasItsTemperature) {
  platform_.answerBy<kelp::QueryTemperCmd>([](const kelp::DevCuid&, const kelp::QueryTemperCmd& cmd) {
    return kelp::Stated<float>(std::get<0>(cmd.params).sensorId == 1000 ? 50.5F : 60.5F);
  });
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoGpu* const own = gpu(handle_);
  EXPECT_EQ(lumoGpuGetSensorTemperature(own, 0, &degrees_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(degrees_, 50);
  EXPECT_EQ(lumoGpuGetSensorTemperature(own, 1, &degrees_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(degrees_, 60);
  EXPECT_EQ(lumoGpuGetSensorTemperature(own, 2, &degrees_), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(GpuOperationsTest, TheHottestSensorIsKnownOfWholeGpusAndParents) {
  platform_.answer<kelp::QueryTemperCmd>(61.5F);
  addGpu(0, DevType::kPhysical, DevArch::kFen2);
  addGpu(1, DevType::kGuest, DevArch::kFen2);
  startMpc();
  for (LumoDevice* const asked : {deviceOf("uuid-0"), parent_}) {
    EXPECT_EQ(lumoGpuGetMaxTemperature(gpu(asked), &degrees_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(degrees_, 61);
  }
  for (LumoDevice* const asked : {deviceOf("uuid-1"), instance_}) {
    EXPECT_EQ(lumoGpuGetMaxTemperature(gpu(asked), &degrees_), LUMO_RETURN_NOT_SUPPORTED);
  }
}

TEST_F(GpuOperationsTest, ClocksAreInMegahertz) {
  platform_.answer<kelp::QueryClockCmd>(1'799'999'999UL);
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoGpuGetClock(gpu(handle_), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1799U);
  EXPECT_EQ(lumoMemoryGetClock(memory(handle_), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1799U);
}

TEST_F(GpuOperationsTest, MaximumClocksAreKnownOfOneModelAlone) {
  kelp::GpuSpec spec;
  spec.maxClock = 1'900'000'000UL;
  platform_.answer<kelp::QueryGpuCapCmd>(spec);
  kelp::MemorySpec memorySpec;
  memorySpec.maxClock = 1'750'000'000UL;
  platform_.answer<kelp::QueryDdrCapCmd>(memorySpec);
  for (const char* model : {"OVT B230E", "OVT B230", "OVT B230EX", ""}) {
    platform_.answer<kelp::QueryDevNameCmd>(std::string(model));
    startWith(DevType::kPhysical, DevArch::kFen1);
    const bool known = std::string(model) == "OVT B230E";
    const LumoReturn code = known ? LUMO_RETURN_SUCCESS : LUMO_RETURN_NOT_SUPPORTED;
    EXPECT_EQ(lumoGpuGetMaxClock(gpu(handle_), &number_), code) << model;
    EXPECT_EQ(number_, known ? 1900U : 99U);
    EXPECT_EQ(lumoMemoryGetMaxClock(memory(handle_), &other_), code) << model;
    EXPECT_EQ(other_, known ? 1750U : 99U);
    number_ = other_ = 99;
    stop();
  }
}

TEST_F(GpuOperationsTest, UnitsAreCountedBehindAMask) {
  addGpu(0);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdValue32 = 3U;
  platform_.descOf[0] = desc;
  kelp::GpuSpec spec;
  spec.unitsPerCore = std::vector<unsigned>{8, 4, 2};
  platform_.answer<kelp::QueryGpuCapCmd>(spec);
  mustStart();
  LumoGpu* const own = gpu(device(0));
  EXPECT_EQ(lumoGpuCountCoreMpx(own, 5, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 10U);
  for (const unsigned long long mask : {0ULL, 8ULL, 9ULL, 1ULL << 63}) {
    EXPECT_EQ(lumoGpuCountCoreMpx(own, mask, &number_), LUMO_RETURN_INVALID_ARGUMENT) << mask;
  }
  EXPECT_EQ(number_, 10U);
}

TEST_F(GpuOperationsTest, OneCoreHasAMaskOfOneBit) {
  addGpu(0);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdValue32 = 1U;
  platform_.descOf[0] = desc;
  kelp::GpuSpec spec;
  spec.unitsPerCore = std::vector<unsigned>{8};
  platform_.answer<kelp::QueryGpuCapCmd>(spec);
  mustStart();
  EXPECT_EQ(lumoGpuCountCoreMpx(gpu(device(0)), 1, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 8U);
  EXPECT_EQ(lumoGpuCountCoreMpx(gpu(device(0)), 2, &number_), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(GpuOperationsTest, AnUnknownNumberOfCoresIsLogged) {
  addGpu(0);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdValue32 = KelpReturn::kNotSupported;
  platform_.descOf[0] = desc;
  mustStart();
  EXPECT_EQ(lumoGpuCountCoreMpx(gpu(device(0)), 1, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mv error, state =  6 "));
}

TEST_F(GpuOperationsTest, SlowdownsComeAsCountAndTime) {
  platform_.answer<kelp::QueryThermalSlowdownStatisticsCmd>(
      kelp::ThermalSlowdownStatistics{.count = 4'000'000'000U, .totalTime = 3'000'000'000U});
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoGpuGetThermalSlowdownStatistics(gpu(handle_), &number_, &other_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 4'000'000'000U);
  EXPECT_EQ(other_, 3'000'000'000U);
}

TEST_F(GpuOperationsTest, AResetOfTheGpuLeavesTheOthersOpen) {
  platform_.answer<kelp::ResetGpuCmd>(0);
  platform_.answer<kelp::ResetGpuHwErrorCountsCmd>(0);
  startWith(DevType::kPhysical, DevArch::kFen2);
  EXPECT_EQ(lumoGpuReset(gpu(handle_)), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoGpuResetHwErrorCounts(gpu(handle_)), LUMO_RETURN_SUCCESS);
  EXPECT_TRUE(platform_.othersTouched.empty());
  platform_.answer<kelp::ResetGpuCmd>(KelpReturn::kNoPermission);
  EXPECT_EQ(lumoGpuReset(gpu(handle_)), LUMO_RETURN_INSUFFICIENT_PERMISSIONS);
}

TEST_F(GpuOperationsTest, ErrorCountsOfAPartAreRefusedByItsNumber) {
  startMpc();
  EXPECT_EQ(lumoGpuResetHwErrorCounts(gpu(parent_)), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, "current device type  2  not support reset hw error counts "));
  EXPECT_EQ(lumoGpuResetHwErrorCounts(gpu(instance_)), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, "current device type  3  not support reset hw error counts "));
  EXPECT_EQ(platform_.count("ResetGpuHwErrorCounts"), 0U);
}

TEST_F(GpuOperationsTest, GuestsOnAWholeGpuAreAskedWithoutANumber) {
  std::vector<unsigned> vgpuIds;
  platform_.answerBy<kelp::QueryVgpuUtilCmd>([&](const kelp::DevCuid&, const kelp::QueryVgpuUtilCmd& cmd) {
    vgpuIds.push_back(std::get<0>(cmd.params));
    return kelp::Stated<unsigned>(33);
  });
  startWith(DevType::kPhysical, DevArch::kFen2);
  EXPECT_EQ(lumoGpuGetGuestUtilization(gpu(handle_), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 33U);
  EXPECT_EQ(vgpuIds, (std::vector<unsigned>{0}));
}

}  // namespace
