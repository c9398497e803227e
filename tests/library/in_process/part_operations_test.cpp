#include "handles.h"
#include "in_process/lumo_fixture.h"
#include "vpu.h"

// What the parts of a device and the system answer to every reply of the platform.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class PartOperationsTest : public LumoFixture {};

TEST_F(PartOperationsTest, UtilizationAndTemperatureLoseTheirFraction) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  kelp::GpuStatus status;
  status.utilization = 42.9F;
  platform_.answer<kelp::QueryGpuStatusCmd>(status);
  unsigned utilization = 99;
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization, 42U);
  int temperature = 99;
  platform_.answer<kelp::QueryTemperCmd>(57.999F);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(temperature, 57);
  platform_.answer<kelp::QueryTemperCmd>(-3.7F);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(temperature, -3);
}

TEST_F(PartOperationsTest, AGpuThatDoesNotAnswerLeavesTheOutput) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned utilization = 99;
  platform_.answer<kelp::QueryGpuStatusCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  platform_.answer<kelp::QueryGpuStatusCmd>(kelp::GpuStatus{});
  EXPECT_EQ(lumoGpuGetUtilization(gpu(handle_), &utilization), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(utilization, 99U);
  int temperature = 99;
  platform_.answer<kelp::QueryTemperCmd>(KelpReturn::kNotFound);
  EXPECT_EQ(lumoGpuGetTemperature(gpu(handle_), &temperature), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(temperature, 99);
}

TEST_F(PartOperationsTest, AFeatureThatIsMissingIsLoggedInTheNameOfTheOperation) {
  startMpc(DevArch::kTor1);
  unsigned number = 99;
  int degrees = 99;
  unsigned long long bytes = 99;
  for (LumoDevice* part : {parent_, instance_}) {
    EXPECT_EQ(lumoGpuGetUtilization(gpu(part), &number), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoGpuGetTemperature(gpu(part), &degrees), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetTotal(memory(part), &bytes), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetUsed(memory(part), &bytes), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoMemoryGetEccMode(memory(part), &number, &number), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, " gpu.cpp:"));
  for (const char* operation : {"getUtilization", "getTemperature", "getTotal", "getUsed", "getEccMode"}) {
    EXPECT_EQ(log_.count(std::string(":") + operation + " >> Feat not supported ! "), 2U) << operation;
  }
}

TEST_F(PartOperationsTest, MemoryIsInBytes) {
  startWith(DevType::kPhysical, DevArch::kFen2);
  kelp::MemoryUsage usage;
  usage.total = 0x1'0000'0000UL;
  usage.used = 5UL;
  usage.region[2] = 7UL;
  platform_.answer<kelp::QueryMemUsageCmd>(usage);
  unsigned long long bytes = 0;
  EXPECT_EQ(lumoMemoryGetTotal(memory(handle_), &bytes), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes, 0x1'0000'0000ULL);
  EXPECT_EQ(lumoMemoryGetUsed(memory(handle_), &bytes), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(bytes, 7U);
  platform_.answer<kelp::QueryMemUsageCmd>(KelpReturn::kFirmwareFailed);
  EXPECT_EQ(lumoMemoryGetTotal(memory(handle_), &bytes), LUMO_RETURN_DRIVER_ACCESS_FAILED);
  EXPECT_EQ(bytes, 7U);
}

TEST_F(PartOperationsTest, OnlyAPhysicalTor1HasEcc) {
  platform_.answer<kelp::QueryEccModeCmd>(
      kelp::EccModeInfo{.current = kelp::EccMode::kOff, .pending = kelp::EccMode::kOn});
  addGpu(0, DevType::kPhysical, DevArch::kTor1);
  addGpu(1, DevType::kPhysical, DevArch::kFen2);
  mustStart();
  unsigned current = 99;
  unsigned pending = 99;
  EXPECT_EQ(lumoMemoryGetEccMode(memory(device(0)), &current, &pending), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(current, 0U);
  EXPECT_EQ(pending, 1U);
  EXPECT_EQ(lumoMemoryGetEccMode(memory(device(1)), &current, &pending), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(PartOperationsTest, VideoCoresAreSortedByKind) {
  using kelp::VpuCoreKind;
  std::vector<kelp::VpuCoreSpecData> cores(6);
  cores[1].kind = VpuCoreKind::kDecoder;
  cores[2].kind = VpuCoreKind::kBoth;
  cores[3].kind = static_cast<VpuCoreKind>(9);
  cores[4].kind = VpuCoreKind::kDecoder;
  platform_.answer<kelp::QueryVpuSpecCmd>(cores);
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(handle_, &vpu), LUMO_RETURN_SUCCESS);
  const auto object = vpu->object.lock();
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kEncoder), (std::vector<unsigned>{0, 5}));
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kDecoder), (std::vector<unsigned>{1, 4}));
  EXPECT_EQ(object->getCoreIds(VpuCoreKind::kBoth), (std::vector<unsigned>{2}));
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to get Vpu core type[ 3 ], st =  1 "));
}

TEST_F(PartOperationsTest, AVideoEngineThatDoesNotAnswerHasNoCores) {
  platform_.answer<kelp::QueryVpuSpecCmd>(KelpReturn::kNotSupported);
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoVpu* vpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVpu(handle_, &vpu), LUMO_RETURN_SUCCESS);
  const auto object = vpu->object.lock();
  ASSERT_NE(object, nullptr);
  EXPECT_TRUE(object->getCoreIds(kelp::VpuCoreKind::kEncoder).empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to get Vpu core count, st =  6 "));
}

TEST_F(PartOperationsTest, TheDriverVersionIsThereWithoutDevices) {
  mustStart();
  char version[8] = "before";
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), version, 5), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_STREQ(version, "before");
  EXPECT_EQ(lumoSystemGetDriverVersion(system(), version, 6), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(version, "1.2.3");
}

TEST_F(PartOperationsTest, AProcessNameFailsAsTheSystemSays) {
  mustStart();
  const std::pair<KelpReturn, LumoReturn> rows[] = {
      {KelpReturn::kNotFound, LUMO_RETURN_NOT_FOUND},
      {KelpReturn::kNoPermission, LUMO_RETURN_INSUFFICIENT_PERMISSIONS},
      {KelpReturn::kFailure, LUMO_RETURN_UNKNOWN_ERROR}};
  char name[32] = "before";
  for (const auto& [state, code] : rows) {
    platform_.processName = state;
    EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), code);
    EXPECT_STREQ(name, "before");
  }
  EXPECT_EQ(platform_.pid, 4242U);
  EXPECT_EQ(log_.count("( system.cc : "), 3U);

  platform_.processName = std::string("/usr/bin/app");
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(name, "/usr/bin/app");
  platform_.processName = std::string();
  EXPECT_EQ(lumoSystemGetProcessName(system(), 4242, name, sizeof name), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(name, "") << "a kernel thread";
}

}  // namespace
