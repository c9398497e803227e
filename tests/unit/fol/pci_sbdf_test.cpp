#include "pci_sbdf.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace kelp {
namespace {

TEST(PciSbdfTest, EachPartHasItsBits) {
  const std::uint64_t packed = packSbdf(0x12345678, 0x9A, 0xBC, 0xDE);
  EXPECT_EQ(packed, 0x12345678'009ABCDE);
  EXPECT_EQ(sbdfDomain(packed), 0x12345678U);
  EXPECT_EQ(sbdfBus(packed), 0x9AU);
  EXPECT_EQ(sbdfDevice(packed), 0xBCU);
  EXPECT_EQ(sbdfFunction(packed), 0xDEU);
  EXPECT_EQ(packSbdf(0, 0x1FF, 0x1FE, 0x1FD), 0x00FFFEFDU) << "eight bits each";
}

TEST(PciSbdfTest, TheTextHasFourDigitsOfDomainAtLeast) {
  EXPECT_EQ(sbdfText(0), "0000:00:00.0");
  EXPECT_EQ(sbdfText(0x410000), "0000:41:00.0");
  EXPECT_EQ(sbdfText(packSbdf(0xABC, 0xEF, 0x1F, 7)), "0abc:ef:1f.7");
  EXPECT_EQ(sbdfText(packSbdf(0x10000, 1, 2, 3)), "10000:01:02.3");
}

TEST(PciSbdfTest, ATextIsPackedWhateverItsCase) {
  const tolk_test::LogCapture log;
  EXPECT_EQ(pciSbdfToUint64("0000:41:00.0"), 0x410000U);
  EXPECT_EQ(pciSbdfToUint64("0aBC:eF:1F.7"), packSbdf(0xABC, 0xEF, 0x1F, 7));
  EXPECT_EQ(pciSbdfToUint64("ffffffff:01:02.3"), packSbdf(0xFFFFFFFF, 1, 2, 3));
  EXPECT_EQ(pciSbdfToUint64("0000:41:00:1"), 0x410001U) << "a colon parts as well as a point";
  EXPECT_TRUE(log.lines.empty());
}

TEST(PciSbdfTest, WhatIsNoAddressIsLoggedAndGives0) {
  for (const char* text : {"", "0000", "0000:41", "0000:41:00", "0000:01:00x0", "0000:41:00.", ":41:00.0",
                           "0000::00.0", "0000:4g:00.0", "100000000:41:00.0"}) {
    const tolk_test::LogCapture log;
    EXPECT_EQ(pciSbdfToUint64(text), 0U) << text;
    EXPECT_TRUE(log.has(rusk::LogLevel::kError, std::string(">> Convert  ") + text + "  to uint64 failed "))
        << text;
  }
}

}  // namespace
}  // namespace kelp
