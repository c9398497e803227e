#include "common/pcie_config_space.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/log_capture.h"

namespace kelp {
namespace {

using rusk::LogLevel;

constexpr std::size_t kCopySize = 264;

/// The copy of a function that is written byte by byte.
struct ConfigSpace {
  std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(kCopySize);

  ConfigSpace() {
    put16(0, 0x4F56);
    put16(2, 0x0410);
    bytes[8] = 0xA1;
    put16(44, 0x1458);
    put16(46, 0x1E25);
  }
  void put16(std::size_t offset, unsigned value) {
    bytes[offset] = static_cast<std::uint8_t>(value);
    bytes[offset + 1] = static_cast<std::uint8_t>(value >> 8);
  }
  /// Adds an entry of the capability list.
  void capability(std::size_t at, std::uint8_t id, std::uint8_t next) {
    bytes[at] = id;
    bytes[at + 1] = next;
  }
  void express(std::size_t at, unsigned maxSpeed, unsigned maxWidth, unsigned speed, unsigned width) {
    put16(at + 12, maxSpeed | (maxWidth << 4));
    put16(at + 18, speed | (width << 4));
  }
  PcieInfo decode() const { return PcieConfigSpace(bytes).decode(); }
};

/// With the capability of a 16 GT/s card in a x8 slot.
ConfigSpace exampleCard() {
  ConfigSpace config;
  config.bytes[52] = 0x40;
  config.capability(0x40, 0x01, 0x50);
  config.capability(0x50, 0x05, 0x70);
  config.capability(0x70, 0x10, 0);
  config.express(0x70, 4, 16, 3, 8);
  return config;
}

TEST(PcieConfigSpace, HeaderGivesTheIds) {
  const PcieInfo info = ConfigSpace().decode();
  EXPECT_TRUE(info.vendorId.ok());
  EXPECT_EQ(info.vendorId.value(), 0x4F56U);
  EXPECT_EQ(info.deviceId.value(), 0x0410U);
  EXPECT_EQ(info.revisionId.value(), 0xA1U);
  EXPECT_TRUE(info.revisionId.ok());
  EXPECT_EQ(info.subsystemVendorId.value(), 0x1458U);
  EXPECT_EQ(info.subsystemDeviceId.value(), 0x1E25U);
}

TEST(PcieConfigSpace, CapabilityGivesTheLink) {
  tolk_test::LogCapture log;
  const PcieInfo info = exampleCard().decode();
  EXPECT_EQ(info.maxLinkSpeed.value(), 16.0F);
  EXPECT_EQ(info.maxLinkGen.value(), 4U);
  EXPECT_EQ(info.maxLinkWidth.value(), 16U);
  EXPECT_EQ(info.curLinkSpeed.value(), 8.0F);
  EXPECT_EQ(info.curLinkGen.value(), 3U);
  EXPECT_EQ(info.curLinkWidth.value(), 8U);
  EXPECT_TRUE(info.curLinkWidth.ok());
  EXPECT_TRUE(log.lines.empty());
}

TEST(PcieConfigSpace, BusWidthAndMemoryAreNotInIt) {
  const PcieInfo info = exampleCard().decode();
  EXPECT_EQ(info.busWidth.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(info.barMemory.state(), KelpReturn::kNotSupported);
}

TEST(PcieConfigSpace, WithoutTheCapabilitySpeedsAreZero) {
  const PcieInfo info = ConfigSpace().decode();
  for (const Stated<float>* speed : {&info.maxLinkSpeed, &info.curLinkSpeed}) {
    EXPECT_TRUE(speed->ok());
    EXPECT_EQ(speed->value(), 0.0F);
  }
  for (const Stated<unsigned>* value :
       {&info.maxLinkWidth, &info.curLinkWidth, &info.maxLinkGen, &info.curLinkGen}) {
    EXPECT_EQ(value->state(), KelpReturn::kNotSupported);
    EXPECT_EQ(value->value(), 0U);
  }
}

TEST(PcieConfigSpace, SpeedCode7IsAGenerationAndNoSpeed) {
  tolk_test::LogCapture log;
  ConfigSpace config = exampleCard();
  config.express(0x70, 7, 16, 1, 1);
  const PcieInfo info = config.decode();
  EXPECT_EQ(info.maxLinkGen.value(), 7U);
  EXPECT_TRUE(info.maxLinkSpeed.ok());
  EXPECT_EQ(info.maxLinkSpeed.value(), 0.0F);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> PcieConfigSpace paser speed, not support case:  7 "));
}

TEST(PcieConfigSpace, DecodersTakeTheirCodes) {
  tolk_test::LogCapture log;
  const float speeds[] = {2.5F, 5.0F, 8.0F, 16.0F, 32.0F, 64.0F};
  for (unsigned code = 1; code <= 6; ++code) {
    EXPECT_EQ(bitValueToSpeed(code), speeds[code - 1]);
    EXPECT_EQ(bitValueToGen(code), code);
  }
  EXPECT_EQ(bitValueToGen(7), 7U);
  for (const unsigned width : {1U, 2U, 4U, 8U, 16U}) {
    EXPECT_EQ(bitValueToWidth(width), width);
  }
  EXPECT_TRUE(log.lines.empty());
}

TEST(PcieConfigSpace, DecodersRefuseOtherCodesWithALine) {
  tolk_test::LogCapture log;
  for (const unsigned width : {0U, 3U, 12U, 32U}) {
    EXPECT_EQ(bitValueToWidth(width), 0U);
    EXPECT_TRUE(log.has(LogLevel::kError,
                        ">> PcieConfigSpace paser width, not support case:  " + std::to_string(width) + " "));
  }
  for (const unsigned code : {0U, 8U, 15U}) {
    const std::string number = std::to_string(code);
    EXPECT_EQ(bitValueToGen(code), 0U);
    EXPECT_TRUE(log.has(LogLevel::kError, ">> PcieConfigSpace paser gen bit Value err:  " + number + " "));
    EXPECT_EQ(bitValueToSpeed(code), 0.0F);
    EXPECT_TRUE(
        log.has(LogLevel::kError, ">> PcieConfigSpace paser speed, paser bit Value err:  " + number + " "));
  }
}

TEST(PcieConfigSpace, RefusedWidthIsZeroWithAValue) {
  ConfigSpace config = exampleCard();
  config.express(0x70, 4, 33, 3, 0);
  const PcieInfo info = config.decode();
  EXPECT_TRUE(info.maxLinkWidth.ok());
  EXPECT_EQ(info.maxLinkWidth.value(), 0U);
  EXPECT_TRUE(info.curLinkWidth.ok());
  EXPECT_EQ(info.curLinkWidth.value(), 0U);
}

TEST(PcieConfigSpace, ListThatLeadsBackIntoItselfEnds) {
  ConfigSpace config;
  config.bytes[52] = 0x40;
  config.capability(0x40, 0x01, 0x50);
  config.capability(0x50, 0x05, 0x40);
  EXPECT_EQ(config.decode().maxLinkWidth.state(), KelpReturn::kNotSupported);
}

TEST(PcieConfigSpace, CapabilityIsFoundAmong64EntriesAndNoMore) {
  for (const std::size_t before : {63U, 64U}) {
    ConfigSpace config;
    config.bytes[52] = 64;
    std::size_t at = 64;
    for (std::size_t i = 0; i < before; ++i, at += 2) {
      config.capability(at, 0x01, static_cast<std::uint8_t>(at + 2));
    }
    config.capability(at, 0x10, 0);
    // Past the header the entries lie in each other's registers, which is all the same to the walk.
    config.express(at, 1, 1, 1, 1);
    EXPECT_EQ(config.decode().maxLinkWidth.ok(), before == 63) << before;
  }
}

TEST(PcieConfigSpace, CapabilityThatLeavesTheCopyIsNone) {
  ConfigSpace config;
  config.bytes[52] = 244;
  config.capability(244, 0x10, 0);
  config.express(244, 4, 16, 3, 8);
  EXPECT_EQ(config.decode().curLinkWidth.value(), 8U);

  ConfigSpace outside;
  outside.bytes[52] = 245;
  outside.capability(245, 0x10, 0);
  EXPECT_EQ(outside.decode().curLinkWidth.state(), KelpReturn::kNotSupported);

  ConfigSpace last;
  last.bytes[52] = 255;
  last.capability(255, 0x10, 0);
  EXPECT_EQ(last.decode().curLinkWidth.state(), KelpReturn::kNotSupported);
}

TEST(PcieConfigSpace, ShortCopyReadsAsZero) {
  const std::uint8_t bytes[] = {0x56, 0x4F, 0x10};
  const PcieInfo info = PcieConfigSpace(bytes).decode();
  EXPECT_EQ(info.vendorId.value(), 0x4F56U);
  EXPECT_EQ(info.deviceId.value(), 0x10U);
  EXPECT_EQ(info.subsystemDeviceId.value(), 0U);
}

TEST(PcieConfigSpace, GarbageIsDecodedInsideTheCopy) {
  ConfigSpace config;
  for (std::size_t i = 0; i < config.bytes.size(); ++i) {
    config.bytes[i] = 0xFF;
  }
  EXPECT_EQ(config.decode().vendorId.value(), 0xFFFFU);
}

}  // namespace
}  // namespace kelp
