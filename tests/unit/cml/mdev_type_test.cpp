#include "linux/mdev/mdev_type.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

// Descriptions of the types of vGPUs.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::LogCapture;

constexpr const char* kDescription =
    "max_resolution=4096x2160,max_encode_num=2,max_decode_num=4,framebuffer=2048,max_instances=8,"
    "max_ov_virtual_display=3";

void expectExample(const MdevTypeInfo& info) {
  EXPECT_EQ(info.maxResolution.value(), "4096x2160");
  EXPECT_EQ(info.maxEncodeNum.value(), 2U);
  EXPECT_EQ(info.maxDecodeNum.value(), 4U);
  EXPECT_EQ(info.framebuffer.value(), 2048U);
  EXPECT_EQ(info.maxInstances.value(), 8U);
  EXPECT_EQ(info.maxVirtualDisplay.value(), 3U);
}

TEST(MdevDescription, EachOptionIsReadAndLogged) {
  LogCapture log;
  expectExample(MdevType::decode(kDescription));
  EXPECT_EQ(log.lines.size(), 6U);
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> max resolution is  4096x2160 "));
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> max encode number is  2 "));
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> max decode number is  4 "));
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> frame buffer is  2048 "));
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> max instance is  8 "));
  EXPECT_TRUE(log.has(LogLevel::kInfo, ">> max virtual display is  3 "));
}

TEST(MdevDescription, OrderOfTheKeysDoesNotMatter) {
  expectExample(
      MdevType::decode("max_ov_virtual_display=3,framebuffer=2048,max_instances=8,max_decode_num=4,"
                       "max_encode_num=2,max_resolution=4096x2160"));
}

TEST(MdevDescription, UnknownKeyKeepsAllKnownKeys) {
  LogCapture log;
  expectExample(MdevType::decode(std::string("frl_config=60,") + kDescription + ",vfio"));
  EXPECT_TRUE(log.has(LogLevel::kWarn, ">> mismatch. Current description option is  frl_config=60 "));
  EXPECT_TRUE(log.has(LogLevel::kWarn, ">> mismatch. Current description option is  vfio "));
}

TEST(MdevDescription, ValuesLoseTheirBlanksAndEndBehindTheFirstSign) {
  const MdevTypeInfo info = MdevType::decode("max_encode_num= 2\t,max_resolution= 1=2 ");
  EXPECT_EQ(info.maxEncodeNum.value(), 2U);
  EXPECT_EQ(info.maxResolution.value(), "1=2");
}

TEST(MdevDescription, NumberThatDoesNotConvertLeavesItsOptionOut) {
  for (const char* const number : {"", "two", "-1", "99999999999", "0x10"}) {
    LogCapture log;
    const std::string option = std::string("framebuffer=") + number;
    const MdevTypeInfo info = MdevType::decode("max_encode_num=2," + option + ",max_decode_num=4");
    EXPECT_EQ(info.framebuffer.state(), KelpReturn::kNotSupported) << number;
    EXPECT_EQ(info.maxEncodeNum.value(), 2U);
    EXPECT_EQ(info.maxDecodeNum.value(), 4U);
    EXPECT_TRUE(log.has(LogLevel::kWarn, ">> mismatch. Current description option is  " + option + " "));
  }
}

TEST(MdevDescription, EmptyOneHasNoOptions) {
  LogCapture log;
  EXPECT_EQ(MdevType::decode("").maxResolution.state(), KelpReturn::kNotSupported);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> regex result is null "));
}

}  // namespace
}  // namespace kelp::linux_
