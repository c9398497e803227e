#include "objects/disp_feat_obj.h"

#include "feature_fixture.h"

namespace kelp {
namespace {

using rusk::LogLevel;

DispInterfaceInfo rowOf(unsigned int hRes, unsigned int vRes, unsigned int pixelClock) {
  DispInterfaceInfo row;
  row.type = DispIntfType::kHdmi;
  row.hRes = hRes;
  row.vRes = vRes;
  row.pixelClock = pixelClock;
  return row;
}

class DispFeatureTest : public tolk_test::FeatureFixture {
 protected:
  Stated<DispIntfSpec> specOf(DevArch arch, const DispInterfaceInfo& row) {
    platform_.answer<QueryDisplayInterfaceSpecCmd>(std::vector<DispInterfaceInfo>{row});
    return DispFeatObj(modelOf(DevType::kPhysical, arch)).getInterfaceSpec(0);
  }
  Stated<float> rateOf(DevArch arch, const DispInterfaceInfo& row) {
    const Stated<DispIntfSpec> spec = specOf(arch, row);
    EXPECT_TRUE(spec.ok());
    return spec.value().maxRefreshRate;
  }
  Stated<float> rateOf(unsigned int hRes, unsigned int vRes, unsigned int pixelClock) {
    return rateOf(DevArch::kFen2, rowOf(hRes, vRes, pixelClock));
  }
};

TEST_F(DispFeatureTest, InterfacesAreReadOnce) {
  platform_.answer<QueryDisplayInterfaceSpecCmd>(
      std::vector<DispInterfaceInfo>{rowOf(1920, 1080, 1485), rowOf(3840, 2160, 5940)});
  const DispFeatObj disp(modelOf(DevType::kPhysical, DevArch::kFen2));
  EXPECT_EQ(disp.getInterfaceCount().value(), 2U);
  const Stated<DispIntfSpec> spec = disp.getInterfaceSpec(1);
  EXPECT_TRUE(spec.ok());
  EXPECT_EQ(spec.value().type.value(), DispIntfType::kHdmi);
  EXPECT_EQ(spec.value().maxHRes.value(), 3840U);
  EXPECT_EQ(spec.value().maxVRes.value(), 2160U);
  EXPECT_EQ(spec.value().maxPixelClock.value(), 5940U);
  EXPECT_EQ(spec.value().maxRefreshRate.value(), 60.0F);
  EXPECT_EQ(platform_.asked.size(), 1U);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(DispFeatureTest, PastTheLastInterfaceThereIsNone) {
  platform_.answer<QueryDisplayInterfaceSpecCmd>(std::vector<DispInterfaceInfo>{rowOf(1920, 1080, 1485)});
  const DispFeatObj one(modelOf(DevType::kPhysical, DevArch::kFen2));
  EXPECT_EQ(one.getInterfaceSpec(1).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(one.getInterfaceSpec(~std::size_t{0}).state(), KelpReturn::kNotSupported);
  platform_.answer<QueryDisplayInterfaceSpecCmd>(std::vector<DispInterfaceInfo>{});
  const DispFeatObj none(modelOf(DevType::kPhysical, DevArch::kFen2));
  EXPECT_TRUE(none.getInterfaceCount().ok());
  EXPECT_EQ(none.getInterfaceCount().value(), 0U);
  EXPECT_EQ(none.getInterfaceSpec(0).state(), KelpReturn::kNotSupported);
}

TEST_F(DispFeatureTest, AFailedReadKeepsItsState) {
  platform_.answer<QueryDisplayInterfaceSpecCmd>(KelpReturn::kBusy);
  const DispFeatObj disp(modelOf(DevType::kPhysical, DevArch::kFen2));
  EXPECT_EQ(disp.getInterfaceCount().state(), KelpReturn::kBusy);
  EXPECT_EQ(disp.getInterfaceSpec(0).state(), KelpReturn::kBusy);
}

TEST_F(DispFeatureTest, WoldsLargestModeHas25Hertz) {
  EXPECT_EQ(rateOf(DevArch::kWold, rowOf(7680, 4320, 0)).value(), 25.0F);
  EXPECT_EQ(rateOf(DevArch::kWold, rowOf(7680, 4320, 20000)).value(), 25.0F);
  EXPECT_EQ(rateOf(DevArch::kWold, rowOf(0, 4320, 0)).value(), 25.0F);
  EXPECT_TRUE(log_.lines.empty());
  EXPECT_EQ(rateOf(DevArch::kWold, rowOf(3840, 2160, 5940)).value(), 60.0F);
  EXPECT_EQ(rateOf(DevArch::kFen1, rowOf(7680, 4320, 20000)).value(), 60.0F);
}

TEST_F(DispFeatureTest, TheRateIsTheLargestCandidateThatTheClockReaches) {
  EXPECT_EQ(rateOf(1920, 1080, 1245).value(), 60.0F) << "60.04";
  EXPECT_EQ(rateOf(1920, 1080, 1244).value(), 30.0F) << "59.99";
  EXPECT_EQ(rateOf(1920, 1080, 1243).value(), 30.0F) << "59.9";
  EXPECT_EQ(rateOf(1920, 1080, 623).value(), 30.0F) << "30.04";
  EXPECT_EQ(rateOf(1000, 1000, 600).value(), 60.0F) << "60 itself";
  EXPECT_EQ(rateOf(1000, 1000, 599).value(), 30.0F);
  EXPECT_EQ(rateOf(1000, 1000, 300).value(), 30.0F) << "30 itself";
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(DispFeatureTest, BelowAllCandidatesThereIsNoRate) {
  EXPECT_EQ(rateOf(1000, 1000, 299).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(
      log_.has(LogLevel::kError,
               "estimateMaxRefreshRate() failed to estimate max refresh rate, naiveRefreshRate = ! 29.9 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, "dispRaw2Spec() Failed to estimate max refresh rate. "));
  EXPECT_EQ(rateOf(1920, 1080, 622).state(), KelpReturn::kNotSupported) << "29.996";
}

TEST_F(DispFeatureTest, AResolutionOf0HasNoRate) {
  for (const auto& row : {rowOf(0, 1080, 1485), rowOf(1920, 0, 1485)}) {
    log_.lines.clear();
    EXPECT_EQ(rateOf(DevArch::kFen2, row).state(), KelpReturn::kNotSupported);
    EXPECT_TRUE(log_.has(LogLevel::kError, "estimateMaxRefreshRate() pxNum is 0 ! "));
    EXPECT_TRUE(log_.has(LogLevel::kError, "dispRaw2Spec() Failed to estimate max refresh rate. "));
  }
}

TEST_F(DispFeatureTest, AResolutionBeyond32BitsIsCounted) {
  EXPECT_EQ(rateOf(0x10000, 0x10000, 42949).state(), KelpReturn::kNotSupported);
  EXPECT_FALSE(log_.has("pxNum is 0"));
}

TEST_F(DispFeatureTest, APixelClockWrapsAt32Bits) {
  EXPECT_EQ(rateOf(1920, 1080, 42949).value(), 60.0F);
  EXPECT_EQ(rateOf(1920, 1080, 42950).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(rateOf(10, 10, 42950).value(), 60.0F) << "32704 Hz are left";
}

TEST_F(DispFeatureTest, WhatTheDriverDoesNotKnowReads0) {
  DispInterfaceInfo row;
  row.type = DispIntfType::kVga;
  row.hRes = 1920U;
  const Stated<DispIntfSpec> spec = specOf(DevArch::kFen2, row);
  EXPECT_TRUE(spec.ok());
  EXPECT_EQ(spec.value().maxHRes.value(), 1920U);
  EXPECT_TRUE(spec.value().maxVRes.ok());
  EXPECT_EQ(spec.value().maxVRes.value(), 0U);
  EXPECT_TRUE(spec.value().maxPixelClock.ok());
  EXPECT_EQ(spec.value().maxRefreshRate.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log_.has("pxNum is 0"));
}

TEST_F(DispFeatureTest, AnUnknownFamilyIsLoggedAndEstimated) {
  for (const DevArch arch : {DevArch::kUnknown, static_cast<DevArch>(5)}) {
    log_.lines.clear();
    EXPECT_EQ(rateOf(arch, rowOf(1920, 1080, 1485)).value(), 60.0F);
    EXPECT_TRUE(log_.has(LogLevel::kError, "Unsupported arch! "));
  }
}

}  // namespace
}  // namespace kelp
