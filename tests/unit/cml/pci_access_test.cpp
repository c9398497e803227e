#include "linux/pci_access.h"

#include <gtest/gtest.h>

#include "host_tree.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

constexpr const char* kSbdf = "0001:41:1f.7";
const std::string kFolder = std::string("/sys/bus/pci/devices/") + kSbdf + "/";

/// The header of a card whose first register is a 64-bit prefetchable one, decoding on.
std::string exampleHeader() {
  std::string header(64, '\0');
  header[4] = 0x06;
  header[8] = '\xA1';
  header[16] = 0x0C;
  header[24] = 0x0C;
  header[44] = 0x56;
  header[45] = 0x4F;
  header[46] = 0x25;
  header[47] = 0x1E;
  return header;
}

constexpr const char* kNoBar = "0x0000000000000000 0x0000000000000000 0x0000000000000000\n";
constexpr const char* kBar256M = "0x000000a000000000 0x000000a00fffffff 0x000000000014220c\n";
constexpr const char* kBar16M32 = "0x00000000e0000000 0x00000000e0ffffff 0x0000000000042208\n";
constexpr const char* kBar1MPlain = "0x00000000f0000000 0x00000000f00fffff 0x0000000000040200\n";
constexpr const char* kIoBar = "0x000000000000e000 0x000000000000e07f 0x0000000000040101\n";

class PciAccessTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    put("vendor", "0x4f56\n");
    put("device", "0x0410\n");
    put("max_link_speed", "16.0 GT/s PCIe\n");
    put("current_link_speed", "8.0 GT/s PCIe\n");
    put("max_link_width", "16\n");
    put("current_link_width", "8\n");
    put("config", exampleHeader());
    put("resource", bars({kBar256M, kNoBar, kBar256M, kNoBar, kNoBar, kNoBar}));
  }

  void put(const std::string& name, const std::string& content) const { file(kFolder + name, content); }
  static std::string bars(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* const line : lines) {
      text += line;
    }
    return text;
  }

  /// A header whose registers, 32 bits each from 16 on, are these and 0.
  static std::string headerWith(std::initializer_list<std::uint32_t> registers,
                                unsigned char command = 0x06) {
    std::string header = exampleHeader();
    header[4] = static_cast<char>(command);
    header.replace(16, 24, 24, '\0');
    std::size_t at = 16;
    for (const std::uint32_t value : registers) {
      for (unsigned byte = 0; byte < 4; ++byte) {
        header[at++] = static_cast<char>(value >> (8 * byte));
      }
    }
    return header;
  }

  void expectBars(unsigned busWidth, unsigned long memory) const {
    const auto info = readPcieInfoFromSysfs(kSbdf);
    ASSERT_TRUE(info.ok());
    EXPECT_EQ(info.value().busWidth.value(), busWidth);
    EXPECT_EQ(info.value().barMemory.value(), memory);
  }

  void expectFailure(const std::string& text) {
    log_.lines.clear();
    EXPECT_EQ(readPcieInfoFromSysfs(kSbdf).state(), KelpReturn::kFailure) << text;
    ASSERT_FALSE(log_.lines.empty()) << text;
    EXPECT_EQ(log_.lines.back().first, static_cast<int>(LogLevel::kError));
    EXPECT_TRUE(log_.lines.back().second.ends_with(">> " + text + " ")) << log_.lines.back().second;
  }
};

TEST_F(PciAccessTest, AllFieldsHaveAValue) {
  const auto read = readPcieInfoFromSysfs(kSbdf);
  ASSERT_TRUE(read.ok());
  const PcieInfo& info = read.value();
  EXPECT_EQ(info.vendorId.value(), 0x4F56U);
  EXPECT_EQ(info.deviceId.value(), 0x0410U);
  EXPECT_EQ(info.subsystemVendorId.value(), 0x4F56U);
  EXPECT_EQ(info.subsystemDeviceId.value(), 0x1E25U);
  EXPECT_EQ(info.revisionId.value(), 0xA1U);
  EXPECT_EQ(info.maxLinkSpeed.value(), 16.0F);
  EXPECT_EQ(info.curLinkSpeed.value(), 8.0F);
  EXPECT_EQ(info.maxLinkWidth.value(), 16U);
  EXPECT_EQ(info.curLinkWidth.value(), 8U);
  EXPECT_EQ(info.busWidth.value(), 128U);
  EXPECT_EQ(info.barMemory.value(), 512UL << 20);
  EXPECT_EQ(info.maxLinkGen.value(), 4U);
  EXPECT_EQ(info.curLinkGen.value(), 3U);
  EXPECT_TRUE(info.vendorId.ok() && info.deviceId.ok() && info.subsystemVendorId.ok() &&
              info.subsystemDeviceId.ok() && info.revisionId.ok() && info.maxLinkSpeed.ok() &&
              info.curLinkSpeed.ok() && info.maxLinkWidth.ok() && info.curLinkWidth.ok() &&
              info.busWidth.ok() && info.barMemory.ok() && info.maxLinkGen.ok() && info.curLinkGen.ok());
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(PciAccessTest, SpeedsGiveTheirGenerations) {
  const std::tuple<const char*, float, unsigned> rows[] = {
      {"2.5 GT/s PCIe\n", 2.5F, 1},   {"2.5 GT/s\n", 2.5F, 1},        {"5.0 GT/s PCIe\n", 5.0F, 2},
      {"8.0 GT/s\n", 8.0F, 3},        {"16.0 GT/s PCIe\n", 16.0F, 4}, {"32.0 GT/s PCIe\n", 32.0F, 5},
      {"64.0 GT/s PCIe\n", 64.0F, 6}, {"5.05 GT/s\n", 5.0F, 2},
  };
  for (const auto& [text, speed, generation] : rows) {
    put("max_link_speed", text);
    const auto info = readPcieInfoFromSysfs(kSbdf);
    ASSERT_TRUE(info.ok()) << text;
    EXPECT_EQ(info.value().maxLinkSpeed.value(), speed);
    EXPECT_EQ(info.value().maxLinkGen.value(), generation);
  }
}

TEST_F(PciAccessTest, SpeedThatIsNoGenerationFailsThere) {
  for (const char* const text :
       {"0.5 GT/s\n", "02.5 GT/s\n", "Unknown\n", "", "10.0 GT/s\n", "9999999999", "3.1\n"}) {
    put("max_link_speed", text);
    expectFailure("getPciGen max error ");
  }
  put("max_link_speed", "16.0 GT/s\n");
  put("current_link_speed", "0.5 GT/s\n");
  expectFailure("getPciGen cur error ");
}

TEST_F(PciAccessTest, FirstMissingFileEndsTheReading) {
  const std::pair<const char*, const char*> rows[] = {
      {"resource", "getPciBitWidthAndTotalBarMemory error"},
      {"config", "getPciSubSysVendorAndDeviceId error"},
      {"current_link_width", "getPciCurLinkWidth error"},
      {"max_link_width", "getPciMaxLinkWidth error"},
      {"current_link_speed", "getPciCurLinkSpeed error"},
      {"max_link_speed", "getPciMaxLinkSpeed error"},
      {"device", "getPciVendorAndDeviceId error"},
      {"vendor", "getPciVendorAndDeviceId error"},
  };
  for (const auto& [name, text] : rows) {
    remove(kFolder + name);
    expectFailure(text);
    ASSERT_EQ(log_.lines.size(), 2U);
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> error, file not exist:  " + kFolder + name + " "));
  }
}

TEST_F(PciAccessTest, TextThatIsNoNumberIsAFailedRead) {
  put("vendor", "4f56\n");
  expectFailure("getPciVendorAndDeviceId error");
  put("vendor", "0x4f56\n");
  put("device", "");
  expectFailure("getPciVendorAndDeviceId error");
  put("device", "0x0410\n");
  for (const char* const text : {"", "x16\n", "nan\n", "inf\n", "-1\n", "1e30\n"}) {
    put("max_link_width", text);
    expectFailure("getPciMaxLinkWidth error");
  }
}

TEST_F(PciAccessTest, WidthIsAFloatThatIsTruncated) {
  put("max_link_width", "15.9\n");
  EXPECT_EQ(readPcieInfoFromSysfs(kSbdf).value().maxLinkWidth.value(), 15U);
}

TEST_F(PciAccessTest, ShortConfigurationSpaceIsAFailedRead) {
  put("config", exampleHeader().substr(0, 63));
  expectFailure("getPciSubSysVendorAndDeviceId error");
}

TEST_F(PciAccessTest, WideRegisterTakesTwoSlots) {
  // The upper half would count as a 32-bit prefetchable register of its own.
  put("config", headerWith({0x0000000C, 0x00000008}));
  put("resource", bars({kBar256M, kNoBar, kNoBar, kNoBar, kNoBar, kNoBar}));
  expectBars(64, 256UL << 20);
}

TEST_F(PciAccessTest, WideRegisterInTheLastSlotCountsAlone) {
  put("config", headerWith({0, 0, 0, 0, 0, 0x0000000C}));
  put("resource", bars({kNoBar, kNoBar, kNoBar, kNoBar, kNoBar, kBar256M}));
  expectBars(64, 256UL << 20);
}

TEST_F(PciAccessTest, NarrowPrefetchableRegisterAdds32) {
  put("config", headerWith({0xE0000008, 0, 0x0000000C}));
  put("resource", bars({kBar16M32, kNoBar, kBar256M, kNoBar, kNoBar, kNoBar}));
  expectBars(96, (16UL << 20) + (256UL << 20));
}

TEST_F(PciAccessTest, OddMemoryTypesAddTheirSizeAlone) {
  put("config", headerWith({0xE000000A, 0xE000000E}));
  put("resource", bars({kBar16M32, kBar16M32, kNoBar, kNoBar, kNoBar, kNoBar}));
  expectBars(0, 32UL << 20);
}

TEST_F(PciAccessTest, PlainAndPortRegistersAddNothing) {
  put("config", headerWith({0xF0000000, 0x0000E009}));
  put("resource", bars({kBar1MPlain, kIoBar, kNoBar, kNoBar, kNoBar, kNoBar}));
  expectBars(0, 0);
}

TEST_F(PciAccessTest, RegistersOfADeviceThatDecodesNoMemoryAddNothing) {
  put("config", headerWith({0x0000000C, 0, 0x0000000C}, 0x04));
  expectBars(0, 0);
}

TEST_F(PciAccessTest, RegistersThatTheKernelAloneKnowsCountInAnyCase) {
  for (const std::uint32_t unset : {0U, 0xFFFFFFFFU}) {
    put("config", headerWith({unset, unset, unset, unset, unset, unset}, 0x00));
    expectBars(128, 512UL << 20);
  }
}

TEST_F(PciAccessTest, EndThatIsNotBehindTheStartIsNoSize) {
  put("config", headerWith({0x0000000C}));
  put("resource", bars({"0x000000a000000000 0x000000a000000000 0x000000000014220c\n"}));
  expectBars(64, 0);
}

TEST_F(PciAccessTest, ResourceThatIsNoNumberIsAFailedRead) {
  for (const char* const text : {"0x0 0x0\n", "zero 0x0 0x0\n", "0x10000000000000000 0x0 0x0\n", "\x01\n"}) {
    put("resource", text);
    expectFailure("getPciBitWidthAndTotalBarMemory error");
  }
}

TEST_F(PciAccessTest, HeaderOfACardBusBridgeIsReadWhole) {
  std::string header = exampleHeader();
  header[14] = '\x82';
  put("config", header);
  expectFailure("getPciBitWidthAndTotalBarMemory error");
  put("config", header + std::string(64, '\0'));
  EXPECT_TRUE(readPcieInfoFromSysfs(kSbdf).ok());
}

TEST_F(PciAccessTest, PathThatDoesNotFitIsRefused) {
  const std::string name(1024, 'n');
  EXPECT_FALSE(PciAccess(0x410000).sysFsInit(name.c_str()).isOpen());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> sysSetFsObjName error!  " + name + " "));
}

TEST_F(PciAccessTest, TextThatIsNoAddressIsAFailure) {
  EXPECT_EQ(readPcieInfoFromSysfs("0000:zz:00.0").state(), KelpReturn::kFailure);
}

}  // namespace
}  // namespace kelp::linux_
