#include <map>

#include "feature_fixture.h"
#include "fen1/fen1_gpu_feat_obj.h"
#include "fen2/fen2_gpu_feat_obj.h"
#include "tor1/tor1_gpu_feat_obj.h"
#include "tor1/tor1_internal_feat_obj.h"
#include "wold/wold_gpu_feat_obj.h"

namespace kelp {
namespace {

class GpuFeatureTest : public tolk_test::FeatureFixture {
 protected:
  const std::shared_ptr<CoreModel>& physical(DevArch arch) { return modelOf(DevType::kPhysical, arch); }

  void answerSensors(std::map<unsigned int, Stated<float>> degreesOf) {
    platform_.answerBy<QueryTemperCmd>([degreesOf](const DevCuid&, const QueryTemperCmd& cmd) {
      const auto found = degreesOf.find(std::get<0>(cmd.params).sensorId);
      return found == degreesOf.end() ? Stated<float>(KelpReturn::kNotFound) : found->second;
    });
  }

  void answerClocks(std::map<unsigned int, Stated<unsigned long>> hertzOf) {
    platform_.answerBy<QueryClockCmd>([hertzOf](const DevCuid&, const QueryClockCmd& cmd) {
      const auto found = hertzOf.find(std::get<0>(cmd.params).clockId);
      return found == hertzOf.end() ? Stated<unsigned long>(KelpReturn::kNotFound) : found->second;
    });
  }
};

TEST_F(GpuFeatureTest, EachEngineHasItsNumber) {
  GpuStatus status;
  status.engine0 = 10.0F;
  status.engine1 = 20.0F;
  status.engine2 = 30.0F;
  status.engine3 = KelpReturn::kDeviceLost;
  platform_.answer<QueryGpuStatusCmd>(status);
  const GpuFeatObj gpu(physical(DevArch::kFen2));
  EXPECT_EQ(gpu.queryEngineUtilization(0).value(), 10.0F);
  EXPECT_EQ(gpu.queryEngineUtilization(1).value(), 20.0F);
  EXPECT_EQ(gpu.queryEngineUtilization(2).value(), 30.0F);
  EXPECT_EQ(gpu.queryEngineUtilization(3).state(), KelpReturn::kDeviceLost);
  EXPECT_EQ(gpu.queryEngineUtilization(4).state(), KelpReturn::kNotSupported);
}

TEST_F(GpuFeatureTest, AnMpcInstanceHasNoEnginesWhateverTheFamily) {
  GpuStatus status;
  status.engine0 = 10.0F;
  platform_.answer<QueryGpuStatusCmd>(status);
  for (const DevArch arch : {DevArch::kWold, DevArch::kFen1, DevArch::kFen2, DevArch::kTor1}) {
    EXPECT_EQ(GpuFeatObj(modelOf(DevType::kMpcInstance, arch)).queryEngineUtilization(0).state(),
              KelpReturn::kNotSupported);
  }
}

TEST_F(GpuFeatureTest, OtherShares) {
  GpuStatus status;
  status.memoryBusy = 41.0F;
  status.coreMax = 42.0F;
  status.coreAverage = 43.0F;
  platform_.answer<QueryGpuStatusCmd>(status);
  const GpuFeatObj gpu(physical(DevArch::kFen2));
  EXPECT_EQ(gpu.queryMemoryBusy().value(), 41.0F);
  EXPECT_EQ(gpu.queryCoreMax().value(), 42.0F);
  EXPECT_EQ(gpu.queryCoreAverage().value(), 43.0F);
}

TEST_F(GpuFeatureTest, TwoSensorsOfAFamilyHaveASelector) {
  answerSensors({{1, 1.0F}, {2, 2.0F}, {9, 9.0F}, {18, 18.0F}, {1000, 1000.0F}, {1002, 1002.0F}});
  const auto reading = [this](const GpuFeatObj& gpu) {
    EXPECT_EQ(gpu.querySensorTemperature(2).state(), KelpReturn::kNotSupported);
    EXPECT_EQ(gpu.querySensorTemperature(0).value(), gpu.queryTemperature().value());
    return std::pair(gpu.querySensorTemperature(0).value(), gpu.querySensorTemperature(1).value());
  };
  EXPECT_EQ(reading(WoldGpuFeatObj(physical(DevArch::kWold))), std::pair(1.0F, 2.0F));
  EXPECT_EQ(reading(Fen1GpuFeatObj(physical(DevArch::kFen1))), std::pair(9.0F, 18.0F));
  EXPECT_EQ(reading(Fen2GpuFeatObj(physical(DevArch::kFen2))), std::pair(9.0F, 18.0F));
}

TEST_F(GpuFeatureTest, Tor1SelectsSensors1000And1002) {
  answerSensors({{1000, 45.0F}, {1002, 46.0F}});
  const Tor1GpuFeatObj gpu(physical(DevArch::kTor1));
  EXPECT_EQ(gpu.querySensorTemperature(0).value(), 45.0F);
  EXPECT_EQ(gpu.querySensorTemperature(1).value(), 46.0F);
  EXPECT_EQ(gpu.querySensorTemperature(2).state(), KelpReturn::kNotSupported);
}

TEST_F(GpuFeatureTest, TheHottestSensorOfTheFamilyCounts) {
  answerSensors({{9, 30.0F}, {18, 52.0F}, {27, 51.0F}, {36, 10.0F}});
  const Fen1GpuFeatObj gpu(physical(DevArch::kFen1));
  EXPECT_EQ(gpu.queryMaxTemperature().value(), 52.0F);
  EXPECT_EQ(platform_.count("QueryTemper"), 4U);
}

TEST_F(GpuFeatureTest, FrostIsATemperature) {
  answerSensors({{9, -30.0F}, {18, -5.0F}, {27, -7.5F}, {36, -10.0F}});
  EXPECT_EQ(Fen2GpuFeatObj(physical(DevArch::kFen2)).queryMaxTemperature().value(), -5.0F);
}

TEST_F(GpuFeatureTest, TheFirstSensorThatFailsEndsTheSearch) {
  answerSensors({{9, 30.0F}, {18, KelpReturn::kBusy}, {27, 51.0F}, {36, KelpReturn::kDeviceLost}});
  EXPECT_EQ(Fen2GpuFeatObj(physical(DevArch::kFen2)).queryMaxTemperature().state(), KelpReturn::kBusy);
  EXPECT_EQ(platform_.count("QueryTemper"), 2U);
}

TEST_F(GpuFeatureTest, TheSensorThatEveryFamilyHasServesTor1) {
  answerSensors({{0, 44.0F}, {1000, 80.0F}});
  EXPECT_EQ(Tor1GpuFeatObj(physical(DevArch::kTor1)).queryMaxTemperature().value(), 44.0F);
  EXPECT_EQ(GpuFeatObj(physical(DevArch::kFen2)).queryMaxTemperature().value(), 44.0F);
}

/// A family whose list of sensors is empty.
class SensorlessGpu : public GpuFeatObj {
 public:
  using GpuFeatObj::GpuFeatObj;

 protected:
  std::span<const std::uint32_t> getSensorIds() const override { return {}; }
};

TEST_F(GpuFeatureTest, WithoutSensorsTheHottestIsAt0) {
  const auto reading = SensorlessGpu(physical(DevArch::kFen2)).queryMaxTemperature();
  EXPECT_TRUE(reading.ok());
  EXPECT_EQ(reading.value(), 0.0F);
}

TEST_F(GpuFeatureTest, TheFasterClusterIsTheGpuClock) {
  answerClocks({{0, 700UL}, {72, 800UL}, {79, 900UL}, {1000, 1000UL}});
  EXPECT_EQ(WoldGpuFeatObj(physical(DevArch::kWold)).queryClock().value(), 700U);
  EXPECT_EQ(Fen1GpuFeatObj(physical(DevArch::kFen1)).queryClock().value(), 900U);
  EXPECT_EQ(Fen2GpuFeatObj(physical(DevArch::kFen2)).queryClock().value(), 900U);
  EXPECT_EQ(Tor1GpuFeatObj(physical(DevArch::kTor1)).queryClock().value(), 1000U);
  EXPECT_EQ(GpuFeatObj(physical(DevArch::kFen2)).queryClock().value(), 700U);
}

TEST_F(GpuFeatureTest, AClusterThatFailsFailsTheClock) {
  answerClocks({{72, KelpReturn::kBusy}, {79, 900UL}});
  EXPECT_EQ(Fen2GpuFeatObj(physical(DevArch::kFen2)).queryClock().state(), KelpReturn::kBusy);
  EXPECT_EQ(platform_.count("QueryClock"), 1U);
}

TEST_F(GpuFeatureTest, TheMaximumClockIsAPropertyOfTheGpu) {
  GpuSpec spec;
  spec.maxClock = 1500000000UL;
  platform_.answer<QueryGpuCapCmd>(spec);
  EXPECT_EQ(Fen1GpuFeatObj(physical(DevArch::kFen1)).queryMaxClock().value(), 1500000000UL);
  EXPECT_EQ(Tor1GpuFeatObj(physical(DevArch::kTor1)).queryMaxClock().state(), KelpReturn::kNotSupported);
}

TEST_F(GpuFeatureTest, GuestUtilizationIsThatOfAllGuests) {
  platform_.answerBy<QueryVgpuUtilCmd>([](const DevCuid&, const QueryVgpuUtilCmd& cmd) {
    return Stated<unsigned int>(100U + std::get<0>(cmd.params));
  });
  EXPECT_EQ(GpuFeatObj(modelOf(DevType::kPhysical, DevArch::kFen2, 7)).queryGuestUtilization().value(), 100U);
}

GpuSpec specOf(Stated<std::vector<unsigned int>> units) {
  GpuSpec spec;
  spec.unitsPerCore = std::move(units);
  return spec;
}

TEST_F(GpuFeatureTest, UnitsAreSummedOverTheCoresOfTheMask) {
  platform_.answer<QueryGpuCapCmd>(specOf(std::vector<unsigned int>{1, 2, 4, 8}));
  const Tor1GpuFeatObj gpu(physical(DevArch::kTor1));
  EXPECT_EQ(gpu.queryUnitsOfCores(0b1101).value(), 13U);
  EXPECT_EQ(gpu.queryUnitsOfCores(0).value(), 0U);
  EXPECT_EQ(gpu.queryUnitsOfCores(~0ULL).value(), 15U) << "bits without a core count nothing";
}

TEST_F(GpuFeatureTest, AMaskHas64Cores) {
  platform_.answer<QueryGpuCapCmd>(specOf(std::vector<unsigned int>(200, 1)));
  EXPECT_EQ(Tor1GpuFeatObj(physical(DevArch::kTor1)).queryUnitsOfCores(~0ULL).value(), 64U);
}

TEST_F(GpuFeatureTest, UnitsThatAreNotToldKeepTheirState) {
  platform_.answer<QueryGpuCapCmd>(specOf(KelpReturn::kFirmwareFailed));
  EXPECT_EQ(Tor1GpuFeatObj(physical(DevArch::kTor1)).queryUnitsOfCores(1).state(),
            KelpReturn::kFirmwareFailed);
  EXPECT_EQ(Tor1InternalFeatObj(physical(DevArch::kTor1)).queryUnitsOfCore(0).state(),
            KelpReturn::kFirmwareFailed);
}

TEST_F(GpuFeatureTest, ACoreIsLookedUpByItsId) {
  platform_.answer<QueryGpuCapCmd>(specOf(std::vector<unsigned int>{1, 2, 4, 8}));
  const Tor1InternalFeatObj internal(physical(DevArch::kTor1));
  EXPECT_EQ(internal.queryUnitsOfCore(2).value(), 4U);
  EXPECT_EQ(internal.queryUnitsOfCore(4).state(), KelpReturn::kNotSupported);
}

TEST_F(GpuFeatureTest, AllGroupsOfErrorCountsAreReset) {
  unsigned long mask = 0;
  platform_.answerBy<ResetGpuHwErrorCountsCmd>([&](const DevCuid&, const ResetGpuHwErrorCountsCmd& cmd) {
    mask = std::get<0>(cmd.params).mask;
    return Stated<int>(0);
  });
  EXPECT_TRUE(GpuFeatObj(physical(DevArch::kTor1)).resetHwErrorCounts().ok());
  EXPECT_EQ(mask, ~0UL);
}

}  // namespace
}  // namespace kelp
