#include <gtest/gtest.h>

#include <limits>

#include "command_access/query_command_access_text.h"

namespace tolk {
namespace {

TEST(QueryText, HexadecimalHasAllItsDigitsInUpperCase) {
  EXPECT_EQ(hexText(0, 2), "0x00");
  EXPECT_EQ(hexText(0xab, 2), "0xAB");
  EXPECT_EQ(hexText(0x4f56, 4), "0x4F56");
  EXPECT_EQ(hexText(0x10000, 4), "0x10000");
  EXPECT_EQ(hexText(std::numeric_limits<std::uint32_t>::max(), 4), "0xFFFFFFFF");
}

TEST(QueryText, ASpeedOf25IsGeneration5) {
  EXPECT_EQ(pcieGenerationText(25.0f), "5");
}

TEST(QueryText, ASpeedThatNoGenerationHasReadsNotAvailable) {
  for (const float speed : {4.0f, 0.0f, 2.4999f, 64.0f, -8.0f, std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_EQ(pcieGenerationText(speed), "N/A") << speed;
  }
}

TEST(QueryText, EverySpeedHasItsGeneration) {
  EXPECT_EQ(pcieGenerationText(2.5f), "1");
  EXPECT_EQ(pcieGenerationText(5.0f), "2");
  EXPECT_EQ(pcieGenerationText(8.0f), "3");
  EXPECT_EQ(pcieGenerationText(16.0f), "4");
  EXPECT_EQ(pcieGenerationText(32.0f), "5");
}

TEST(QueryText, WattsAreCutBehindTwoDecimals) {
  EXPECT_EQ(wattsText(12.3456), "12.34");
  EXPECT_EQ(wattsText(12.349), "12.34");
  EXPECT_EQ(wattsText(250), "250.00");
  EXPECT_EQ(wattsText(0.009), "0.00");
  EXPECT_EQ(wattsText(0), "0.00");
  EXPECT_EQ(wattsText(4294967.295), "4294967.29");
}

TEST(QueryText, OfARateTheHundredthsStandAsAPlainNumber) {
  const auto rate = [](float hertz) { return resolutionText({0, 1920, 1080, 0, hertz}); };
  EXPECT_EQ(rate(59.94f), "1920x1080@59.94Hz");
  EXPECT_EQ(rate(60.05f), "1920x1080@60.5Hz");
  EXPECT_EQ(rate(60.0f), "1920x1080@60.0Hz");
  EXPECT_EQ(rate(59.999f), "1920x1080@59.0Hz");
  EXPECT_EQ(rate(0.0f), "1920x1080@0.0Hz");
}

TEST(QueryText, ResolutionsAreUnsigned) {
  const auto most = std::numeric_limits<std::uint32_t>::max();
  EXPECT_EQ(resolutionText({0, most, most, 0, 25.0f}), "4294967295x4294967295@25.0Hz");
}

TEST(QueryText, DisplaysAreNamedByTheirConnector) {
  EXPECT_STREQ(displayTypeText(0), "DP");
  EXPECT_STREQ(displayTypeText(1), "EDP");
  EXPECT_STREQ(displayTypeText(2), "VGA");
  EXPECT_STREQ(displayTypeText(3), "HDMI");
  EXPECT_STREQ(displayTypeText(4), "LVDS");
  EXPECT_STREQ(displayTypeText(5), "N/A");
  EXPECT_STREQ(displayTypeText(std::numeric_limits<std::uint32_t>::max()), "N/A");
}

}  // namespace
}  // namespace tolk
