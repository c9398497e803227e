#include <gtest/gtest.h>

#include "fen1/fen1_gpu_feat_obj.h"
#include "fen2/fen2_gpu_feat_obj.h"
#include "objects/ecc_feat_obj.h"
#include "objects/memory_feat_obj.h"
#include "objects/mpc_feat_obj.h"
#include "objects/vpu_feat_obj.h"
#include "support/fake_platform.h"
#include "tor1/tor1_gpu_feat_obj.h"
#include "wold/wold_gpu_feat_obj.h"

namespace kelp {
namespace {

using tolk_test::FakePlatform;
using tolk_test::makeCuid;

class FeatureTest : public testing::Test {
 protected:
  const std::shared_ptr<CoreModel>& modelOf(DevType type, DevArch arch) {
    model_ = std::make_shared<CoreModel>(makeCuid(type, arch));
    return model_;
  }
  const std::shared_ptr<CoreModel>& model() { return modelOf(DevType::kPhysical, DevArch::kTor1); }

  FakePlatform platform_;
  std::shared_ptr<CoreModel> model_;
};

TEST_F(FeatureTest, UtilizationIsAtMost100) {
  GpuStatus status;
  status.utilization = 250.0F;
  status.engine1 = 250.0F;
  platform_.answer<QueryGpuStatusCmd>(status);
  const auto reading = GpuFeatObj(model()).queryUtilization();
  EXPECT_EQ(reading.value().utilization.value(), 100.0F);
  EXPECT_EQ(reading.value().engine1.value(), 250.0F);
}

TEST_F(FeatureTest, AnUnavailableUtilizationKeepsItsState) {
  platform_.answer<QueryGpuStatusCmd>(GpuStatus{});
  const auto reading = GpuFeatObj(model()).queryUtilization();
  EXPECT_TRUE(reading.ok());
  EXPECT_EQ(reading.value().utilization.state(), KelpReturn::kNotSupported);
  platform_.answer<QueryGpuStatusCmd>(KelpReturn::kBusy);
  EXPECT_EQ(GpuFeatObj(model()).queryUtilization().state(), KelpReturn::kBusy);
}

TEST_F(FeatureTest, TheTemperatureIsThatOfTheFamilysFirstSensor) {
  platform_.answerBy<QueryTemperCmd>([](const DevCuid&, const QueryTemperCmd& cmd) -> Stated<float> {
    return static_cast<float>(std::get<0>(cmd.params).sensorId);
  });
  EXPECT_EQ(WoldGpuFeatObj(model()).queryTemperature().value(), 1.0F);
  EXPECT_EQ(Fen1GpuFeatObj(model()).queryTemperature().value(), 9.0F);
  EXPECT_EQ(Fen2GpuFeatObj(model()).queryTemperature().value(), 9.0F);
  EXPECT_EQ(Tor1GpuFeatObj(model()).queryTemperature().value(), 1000.0F);
}

TEST_F(FeatureTest, AGpuOfNoFamilyHasNoTemperature) {
  EXPECT_EQ(GpuFeatObj(model()).queryTemperature().state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(platform_.asked.empty());
}

MemoryUsage usageOf(Stated<unsigned long> used, std::array<Stated<unsigned long>, 4> region) {
  MemoryUsage usage;
  usage.total = 1000UL;
  usage.used = used;
  usage.region = region;
  return usage;
}

TEST_F(FeatureTest, UsedMemoryIsTheLargerOfTotalAndSum) {
  const MemoryFeatObj memory(model());
  const Stated<unsigned long> none;
  const Stated<unsigned long> lost(KelpReturn::kDeviceLost);
  platform_.answer<QueryMemUsageCmd>(usageOf(50UL, {10UL, 20UL, 5UL, none}));
  EXPECT_EQ(memory.queryUsed().value(), 50UL);
  platform_.answer<QueryMemUsageCmd>(usageOf(30UL, {10UL, 20UL, 5UL, none}));
  EXPECT_EQ(memory.queryUsed().value(), 35UL);
  platform_.answer<QueryMemUsageCmd>(usageOf(none, {10UL, lost, 5UL, 1UL}));
  EXPECT_EQ(memory.queryUsed().value(), 16UL);
  platform_.answer<QueryMemUsageCmd>(usageOf(lost, {none, none, none, none}));
  EXPECT_TRUE(memory.queryUsed().ok());
  EXPECT_EQ(memory.queryUsed().value(), 0UL);
}

TEST_F(FeatureTest, MemoryIsReadAfresh) {
  const MemoryFeatObj memory(model());
  platform_.asked.clear();
  platform_.answer<QueryMemUsageCmd>(usageOf(50UL, {}));
  EXPECT_EQ(memory.queryTotal().value(), 1000UL);
  EXPECT_EQ(memory.queryTotal().value(), 1000UL);
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QueryMemUsage", "QueryMemUsage"}));
  platform_.answer<QueryMemUsageCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(memory.queryTotal().state(), KelpReturn::kAccessFailed);
  EXPECT_EQ(memory.queryUsed().state(), KelpReturn::kAccessFailed);
}

TEST_F(FeatureTest, BusWidthIsChannelsTimesTheirWidth) {
  MemorySpec spec;
  spec.channelCount = 12U;
  spec.channelWidth = 32U;
  platform_.answer<QueryDdrCapCmd>(spec);
  EXPECT_EQ(MemoryFeatObj(model()).getBusWidth().value(), 384U);
}

TEST_F(FeatureTest, BusWidthFailsAsItsPartsDo) {
  MemorySpec spec;
  spec.channelWidth = KelpReturn::kBusy;
  platform_.answer<QueryDdrCapCmd>(spec);
  EXPECT_EQ(MemoryFeatObj(model()).getBusWidth().state(), KelpReturn::kNotSupported);
  spec.channelCount = 12U;
  platform_.answer<QueryDdrCapCmd>(spec);
  EXPECT_EQ(MemoryFeatObj(model()).getBusWidth().state(), KelpReturn::kBusy);
  platform_.answer<QueryDdrCapCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(MemoryFeatObj(model()).getBusWidth().state(), KelpReturn::kAccessFailed);
}

TEST_F(FeatureTest, EccModeIsAskedOfTheDriver) {
  platform_.answer<QueryEccModeCmd>(EccModeInfo{.current = EccMode::kOff, .pending = EccMode::kOn});
  EXPECT_EQ(EccFeatObj(model()).queryEccMode().value().current, EccMode::kOff);
  EXPECT_EQ(EccFeatObj(model()).queryEccMode().value().pending, EccMode::kOn);
}

TEST_F(FeatureTest, OnlyAnMpcParentReadsWhatItCanBeDividedInto) {
  platform_.answer<QueryMpcProfListCmd>(std::vector<MpcProfile>{{.id = 3, .name = "1c.16g"}});
  platform_.answer<QueryMpcConfListCmd>(KelpReturn::kBusy);
  const MpcFeatObj parent(modelOf(DevType::kMpcParent, DevArch::kFen2));
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QueryMpcProfList", "QueryMpcConfList"}));
  EXPECT_EQ(parent.getSupportedProfiles().value().at(0).name, "1c.16g");
  EXPECT_EQ(parent.getSupportedConfigurations().state(), KelpReturn::kBusy);

  platform_.asked.clear();
  for (const DevType type : {DevType::kPhysical, DevType::kMpcInstance}) {
    const MpcFeatObj other(modelOf(type, DevArch::kFen2));
    EXPECT_EQ(other.getSupportedProfiles().state(), KelpReturn::kNotSupported);
    EXPECT_EQ(other.getSupportedConfigurations().state(), KelpReturn::kNotSupported);
  }
  EXPECT_TRUE(platform_.asked.empty());
}

TEST_F(FeatureTest, OnlyAnMpcInstanceHasAProfileOfItsOwn) {
  platform_.answer<QueryMpcProfCmd>(MpcProfile{.id = 0x0103, .name = "1c.16g"});
  EXPECT_EQ(MpcFeatObj(modelOf(DevType::kMpcInstance, DevArch::kFen2)).queryInstanceProfile().value().id,
            0x0103U);
  for (const DevType type : {DevType::kPhysical, DevType::kMpcParent}) {
    EXPECT_EQ(MpcFeatObj(modelOf(type, DevArch::kFen2)).queryInstanceProfile().state(),
              KelpReturn::kNotSupported);
  }
}

TEST_F(FeatureTest, InstancesAreAskedOfTheDriver) {
  platform_.answer<QueryMpcInstListCmd>(MpcInstList{{.miscId = 3, .instanceId = 0}});
  EXPECT_EQ(MpcFeatObj(modelOf(DevType::kMpcParent, DevArch::kFen2)).queryInstances().value().at(0).miscId,
            3U);
}

VpuCoreSpecData coreOf(VpuCoreKind kind) {
  return {.kind = kind, .threadCount = 2, .maxInstances = 36, .maxClock = 700000000U};
}

TEST_F(FeatureTest, VideoCoresAreReadOnce) {
  platform_.answer<QueryVpuSpecCmd>(
      std::vector<VpuCoreSpecData>{coreOf(VpuCoreKind::kEncoder), coreOf(VpuCoreKind::kBoth)});
  const VpuFeatObj vpu(modelOf(DevType::kPhysical, DevArch::kFen2));
  EXPECT_EQ(vpu.getCoreCount().value(), 2U);
  EXPECT_EQ(vpu.getCoreSpec(1).value().kind, VpuCoreKind::kBoth);
  EXPECT_EQ(vpu.getCoreSpec(1).value().maxClock.value(), 700000000U);
  EXPECT_EQ(vpu.getCoreSpec(2).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(platform_.asked.size(), 1U);
}

TEST_F(FeatureTest, FromTor1OnVideoCoresHaveNoClockLimit) {
  platform_.answer<QueryVpuSpecCmd>(
      std::vector<VpuCoreSpecData>{coreOf(VpuCoreKind::kEncoder), coreOf(VpuCoreKind::kBoth)});
  const VpuFeatObj vpu(modelOf(DevType::kPhysical, DevArch::kTor1));
  EXPECT_EQ(vpu.getCoreCount().value(), 2U);
  for (const unsigned core : {0U, 1U}) {
    EXPECT_EQ(vpu.getCoreSpec(core).value().maxInstances, 36U);
    EXPECT_EQ(vpu.getCoreSpec(core).value().maxClock.state(), KelpReturn::kNotSupported);
  }
}

TEST_F(FeatureTest, AnUnreadableVideoEngineKeepsItsState) {
  platform_.answer<QueryVpuSpecCmd>(KelpReturn::kNotSupported);
  const VpuFeatObj vpu(model());
  EXPECT_EQ(vpu.getCoreCount().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(vpu.getCoreSpec(0).state(), KelpReturn::kNotSupported);
}

}  // namespace
}  // namespace kelp
