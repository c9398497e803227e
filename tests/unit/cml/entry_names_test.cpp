#include <gtest/gtest.h>

#include <regex>

#include "linux/entry_names.h"

namespace kelp::linux_ {
namespace {

TEST(EntryNames, NumberBehindThePrefix) {
  EXPECT_EQ(numberBehind("ovgpu.", "ovgpu.0"), 0U);
  EXPECT_EQ(numberBehind("ovgpu.", "ovgpu.0010"), 10U);
  EXPECT_EQ(numberBehind("gpu", "gpu12"), 12U);
  EXPECT_EQ(numberBehind("ovgpu.", "ovgpu.18446744073709551615"), 18446744073709551615U);
}

TEST(EntryNames, NumberBeyond64BitsIsNone) {
  EXPECT_EQ(numberBehind("ovgpu.", "ovgpu.18446744073709551616"), std::nullopt);
  EXPECT_EQ(numberBehind("ovgpu.", "ovgpu.99999999999999999999999999"), std::nullopt);
}

TEST(EntryNames, FormsAreThoseOfTheExpressions) {
  const std::regex misc("ovgpu\\.[0-9]+");
  const std::regex address("[0-9a-zA-Z]{4,8}:[0-9a-zA-Z]{2}:[0-9a-zA-Z]{2}\\.[0-9a-zA-Z]{1}");
  const std::regex hexAddress("^[0-9a-fA-F]{4,8}:[0-9a-fA-F]{2}:[0-9a-fA-F]{2}\\.[0-9a-fA-F]{1}$");
  for (const char* const name : {"",
                                 ".",
                                 "..",
                                 "ovgpu",
                                 "ovgpu.",
                                 "ovgpu.7",
                                 "ovgpu.7 ",
                                 " ovgpu.7",
                                 "ovgpu.-7",
                                 "ovgpu.+7",
                                 "ovgpu.0x7",
                                 "ovgpu7",
                                 "ovgpuX7",
                                 "OVGPU.7",
                                 "ovgpu.7a",
                                 "ac_dev",
                                 "0000:41:00.0",
                                 "00000000:41:00.0",
                                 "000:41:00.0",
                                 "000000000:41:00.0",
                                 "zZ09:zz:ZZ.z",
                                 "aF09:aa:FF.f",
                                 "000g:41:00.0",
                                 "0000:41:00.G",
                                 "0000:41:00.",
                                 "0000:41:00.00",
                                 "0000:41:00x0",
                                 "0000-41:00.0",
                                 "0000:4:00.0",
                                 "0000:411:00.0",
                                 "0000:41:0.0",
                                 "0000:41:000.0",
                                 ":41:00.0",
                                 "0000:41:00.\xE9",
                                 "00_0:41:00.0",
                                 "0000:41:00.0 ",
                                 "bind",
                                 "unbind",
                                 "module",
                                 "new_id"}) {
    EXPECT_EQ(numberBehind("ovgpu.", name).has_value(), std::regex_match(name, misc)) << name;
    EXPECT_EQ(isPciAddress(name), std::regex_match(name, address)) << name;
    EXPECT_EQ(isHexPciAddress(name), std::regex_match(name, hexAddress)) << name;
  }
}

}  // namespace
}  // namespace kelp::linux_
