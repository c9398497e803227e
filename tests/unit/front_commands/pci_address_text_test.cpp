#include "command_access/lumo_access/pci_address_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace tolk {
namespace {

std::string widened(const std::string& text) {
  char sbdf[LUMO_PCI_SBDF_SIZE] = {};
  std::snprintf(sbdf, sizeof sbdf, "%s", text.c_str());
  widenPciDomain(sbdf);
  return sbdf;
}

TEST(PciAddressText, HasEightDigitsOfDomain) {
  EXPECT_EQ(widened("0000:41:00.0"), "00000000:41:00.0");
  EXPECT_EQ(widened("10000:41:1f.7"), "00010000:41:1f.7");
  EXPECT_EQ(widened("12345678:41:00.0"), "12345678:41:00.0");
}

TEST(PciAddressText, IsInLowerCase) {
  EXPECT_EQ(widened("00AB:C1:0D.0"), "000000ab:c1:0d.0");
}

TEST(PciAddressText, EmptyStaysEmpty) {
  EXPECT_EQ(widened(""), "");
}

TEST(PciAddressText, WhatIsNoAddressStays) {
  for (const auto* text : {"0000", "0000:41", "0000:41:00", "0000:41:00.", "0000:41:00.0:", "0000:41:00.0 ",
                           "zz:41:00.0", "123456789:41:00.0", "0000.41.00.0"}) {
    EXPECT_EQ(widened(text), text);
  }
}

TEST(PciAddressText, ReadsNoFurtherThanItsField) {
  char sbdf[LUMO_PCI_SBDF_SIZE];
  std::memset(sbdf, '0', sizeof sbdf);
  widenPciDomain(sbdf);
  EXPECT_EQ(std::string(sbdf, sizeof sbdf), std::string(sizeof sbdf, '0'));
}

}  // namespace
}  // namespace tolk
