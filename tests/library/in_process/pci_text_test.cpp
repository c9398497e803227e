#include "pci_text.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace lumo {
namespace {

TEST(PciTextTest, TakesAddressesOfAnyDomainWidth) {
  for (const char* text : {"0000:41:00.0", "10000:41:00.0", "00000000:fF:1F.7", "ABCDEF:41:00.f"}) {
    EXPECT_TRUE(checkSbdfFormat(text)) << text;
  }
}

TEST(PciTextTest, TheFunctionMayFollowAnyCharacter) {
  EXPECT_TRUE(checkSbdfFormat("0000:01:00x0"));
  EXPECT_TRUE(checkSbdfFormat("0000:01:00:0"));
  EXPECT_FALSE(checkSbdfFormat("0000:01:00\n0"));
}

TEST(PciTextTest, RefusesWhatIsNoAddress) {
  for (const char* text :
       {"", "0", "000:41:00.0", "000000000:41:00.0", "0000:41:00.", "0000:41:00.00", "0000:4:00.0",
        "0000:41:0.0", "0000.41:00.0", "0000:41.00.0", "000g:41:00.0", "0000:4g:00.0", "0000:41:0g.0",
        "0000:41:00.g", " 0000:41:00.0", "0000:41:00.0 ", "41:00.0"}) {
    EXPECT_FALSE(checkSbdfFormat(text)) << text;
  }
}

TEST(PciTextTest, AnAddressIsShownAsItIs) {
  const tolk_test::LogCapture log;
  EXPECT_EQ(formatOutputPciStr("0000:41:00.0"), "0000:41:00.0");
  EXPECT_TRUE(log.lines.empty());
  EXPECT_EQ(formatOutputPciStr("ovgpu"), "");
  EXPECT_EQ(log.count("ovgpu"), 1U);
}

}  // namespace
}  // namespace lumo
