#include "objects/memory_feat_obj.h"

#include "feature_fixture.h"

namespace kelp {
namespace {

class MemoryFeatureTest : public tolk_test::FeatureFixture {
 protected:
  MemoryFeatObj memoryOf(DevArch arch) { return MemoryFeatObj(modelOf(DevType::kPhysical, arch)); }

  Stated<unsigned int> speedOf(DevArch arch, Stated<unsigned long> clock) {
    platform_.answer<QueryClockCmd>(clock);
    return memoryOf(arch).querySpeed();
  }

  Stated<unsigned int> bandwidthOf(DevArch arch, Stated<unsigned long> clock, Stated<unsigned int> count,
                                   Stated<unsigned int> width) {
    MemorySpec spec;
    spec.channelCount = count;
    spec.channelWidth = width;
    platform_.answer<QueryDdrCapCmd>(spec);
    platform_.answer<QueryClockCmd>(clock);
    return memoryOf(arch).queryBandwidth();
  }
};

TEST_F(MemoryFeatureTest, EachFamilyHasItsMemoryClock) {
  platform_.answerBy<QueryClockCmd>([](const DevCuid&, const QueryClockCmd& cmd) {
    return Stated<unsigned long>(std::get<0>(cmd.params).clockId);
  });
  EXPECT_EQ(memoryOf(DevArch::kWold).queryClock().value(), 1U);
  EXPECT_EQ(memoryOf(DevArch::kFen1).queryClock().value(), 80U);
  EXPECT_EQ(memoryOf(DevArch::kFen2).queryClock().value(), 80U);
  EXPECT_EQ(memoryOf(DevArch::kTor1).queryClock().value(), 1001U);
}

TEST_F(MemoryFeatureTest, AGuestHasTheMemoryClockOfItsFamily) {
  platform_.answerBy<QueryClockCmd>([](const DevCuid&, const QueryClockCmd& cmd) {
    return Stated<unsigned long>(std::get<0>(cmd.params).clockId);
  });
  EXPECT_EQ(MemoryFeatObj(modelOf(DevType::kGuest, DevArch::kFen2)).queryClock().value(), 80U);
}

TEST_F(MemoryFeatureTest, NoFamilyNoSpeed) {
  for (const DevArch arch : {DevArch::kUnknown, static_cast<DevArch>(5)}) {
    EXPECT_EQ(speedOf(arch, 1000000000UL).state(), KelpReturn::kNotSupported);
    EXPECT_EQ(platform_.count("QueryClock"), 0U);
  }
}

TEST_F(MemoryFeatureTest, WoldTransfersTwiceAClock) {
  EXPECT_EQ(speedOf(DevArch::kWold, 1600000000UL).value(), 3200U);
  EXPECT_EQ(speedOf(DevArch::kWold, 1600999999UL).value(), 3200U) << "whole megahertz";
  EXPECT_EQ(speedOf(DevArch::kWold, 0UL).value(), 0U);
}

TEST_F(MemoryFeatureTest, WoldAt1866MegahertzTransfers3733) {
  EXPECT_EQ(speedOf(DevArch::kWold, 1866000000UL).value(), 3733U);
  EXPECT_EQ(speedOf(DevArch::kWold, 1866666667UL).value(), 3733U);
  EXPECT_EQ(speedOf(DevArch::kWold, 1865999999UL).value(), 3730U);
  EXPECT_EQ(speedOf(DevArch::kWold, 1867000000UL).value(), 3734U);
}

TEST_F(MemoryFeatureTest, LaterFamiliesTransferEightTimesAClockInHundreds) {
  for (const DevArch arch : {DevArch::kFen1, DevArch::kFen2, DevArch::kTor1}) {
    EXPECT_EQ(speedOf(arch, 2000000000UL).value(), 16000U);
    EXPECT_EQ(speedOf(arch, 1750000000UL).value(), 14000U);
    EXPECT_EQ(speedOf(arch, 1755000000UL).value(), 14000U) << "14040";
    EXPECT_EQ(speedOf(arch, 1757000000UL).value(), 14100U) << "14056";
  }
}

TEST_F(MemoryFeatureTest, Fen2WithAClockOf1HasSpeed0) {
  EXPECT_EQ(speedOf(DevArch::kFen2, 1UL).value(), 0U);
}

TEST_F(MemoryFeatureTest, AClockThatFailsFailsTheSpeed) {
  EXPECT_EQ(speedOf(DevArch::kTor1, KelpReturn::kBusy).state(), KelpReturn::kBusy);
}

TEST_F(MemoryFeatureTest, AnAbsurdClockStaysLarge) {
  for (const DevArch arch : {DevArch::kWold, DevArch::kTor1}) {
    EXPECT_EQ(speedOf(arch, ~0UL).value(), ~0U);
    EXPECT_EQ(bandwidthOf(arch, ~0UL, 0xFFFFU, 0xFFFFU).value(), ~0U);
  }
}

TEST_F(MemoryFeatureTest, BandwidthIsSpeedTimesBusWidth) {
  EXPECT_EQ(bandwidthOf(DevArch::kTor1, 2000000000UL, 16U, 32U).value(), 1024U);
  EXPECT_EQ(bandwidthOf(DevArch::kWold, 1866000000UL, 4U, 32U).value(), 59U) << "59.728, cut";
}

TEST_F(MemoryFeatureTest, TheFirstFailureStopsTheBandwidth) {
  EXPECT_EQ(bandwidthOf(DevArch::kTor1, KelpReturn::kBusy, KelpReturn::kDeviceLost, 32U).state(),
            KelpReturn::kBusy);
  EXPECT_EQ(bandwidthOf(DevArch::kTor1, 1UL, KelpReturn::kDeviceLost, KelpReturn::kBusy).state(),
            KelpReturn::kDeviceLost);
  EXPECT_EQ(bandwidthOf(DevArch::kTor1, 1UL, 16U, KelpReturn::kReadFailed).state(), KelpReturn::kReadFailed);
}

TEST_F(MemoryFeatureTest, WhatIsBuiltInIsReadOnce) {
  MemorySpec spec;
  spec.maxClock = 2000000000UL;
  spec.type = 1U;
  spec.vendor = std::string("Samsung");
  platform_.answer<QueryDdrCapCmd>(spec);
  const MemoryFeatObj memory(modelOf(DevType::kPhysical, DevArch::kFen1));
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QueryDdrCap"}));
  EXPECT_EQ(memory.getMaxClock().value(), 2000000000UL);
  EXPECT_EQ(memory.getMemoryType().value(), 1U);
  EXPECT_EQ(memory.getVendor().value(), "Samsung");
  EXPECT_EQ(memory.getBusWidth().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(platform_.asked.size(), 1U);
}

TEST_F(MemoryFeatureTest, AnUnreadableBuildKeepsItsState) {
  platform_.answer<QueryDdrCapCmd>(KelpReturn::kFirmwareFailed);
  const MemoryFeatObj memory(modelOf(DevType::kPhysical, DevArch::kFen1));
  EXPECT_EQ(memory.getMaxClock().state(), KelpReturn::kFirmwareFailed);
  EXPECT_EQ(memory.getMemoryType().state(), KelpReturn::kFirmwareFailed);
  EXPECT_EQ(memory.getVendor().state(), KelpReturn::kFirmwareFailed);
}

TEST_F(MemoryFeatureTest, SystemAndGuestMemoryAreFieldsOfTheUsage) {
  MemoryUsage usage;
  usage.systemTotal = 5UL;
  platform_.answer<QueryMemUsageCmd>(usage);
  const MemoryFeatObj memory = memoryOf(DevArch::kFen1);
  EXPECT_EQ(memory.querySystemTotal().value(), 5U);
  EXPECT_EQ(memory.queryGuestReserved().state(), KelpReturn::kNotSupported);
  usage.guestReserved = 6UL;
  platform_.answer<QueryMemUsageCmd>(usage);
  EXPECT_EQ(memory.queryGuestReserved().value(), 6U);
  platform_.answer<QueryMemUsageCmd>(KelpReturn::kBusy);
  EXPECT_EQ(memory.querySystemTotal().state(), KelpReturn::kBusy);
  EXPECT_EQ(memory.queryGuestReserved().state(), KelpReturn::kBusy);
}

TEST_F(MemoryFeatureTest, RetiredPagesOfBothCausesCount) {
  platform_.answer<QueryEccRetiredPagesCntCmd>(EccPageRetirementCount{.singleBit = 3, .doubleBit = 4});
  const MemoryFeatObj memory = memoryOf(DevArch::kTor1);
  EXPECT_EQ(memory.queryRetiredPages().value(), 7U);
  platform_.answer<QueryEccRetiredPagesCntCmd>(KelpReturn::kNotSupported);
  EXPECT_EQ(memory.queryRetiredPages().state(), KelpReturn::kNotSupported);
}

}  // namespace
}  // namespace kelp
