#include <gtest/gtest.h>

#include "linux/ap/device_uuid.h"

namespace kelp::linux_ {
namespace {

/// Efuse fields 0 to 3 of 0x123456789A, 0xABC, 0x15, 0x0A.
Efuse exampleChip() {
  Efuse efuse;
  efuse.chipField0 = 0x123456789AUL;
  efuse.chipField1 = 0xABCU;
  efuse.chipField23 = 0x15U | (0x0AU << 5);
  return efuse;
}

TEST(DeviceUuid, ChipValueJoinsTheFields) {
  EXPECT_EQ(chipValue(exampleChip()), 0x3456789A556AF012UL);
}

TEST(DeviceUuid, ChipValueIsHashed) {
  EXPECT_EQ(uuidOfChip(0x3456789A556AF012UL), "69a595f8-b61c-1978-3817-019f596bec2d");
}

TEST(DeviceUuid, InstancesOfOneProfileDiffer) {
  EXPECT_EQ(uuidOfInstance(0x3456789A556AF012UL, 0x0003, 2), "5e4bcc7a-418f-4350-c29f-ad1ed9e10fd7");
  EXPECT_EQ(uuidOfInstance(0x3456789A556AF012UL, 0x0103, 2), "dc232c4f-be45-7e4c-6c7f-15f75f54c8fb");
}

TEST(DeviceUuid, ChipWithoutIdentityIsNamedByItsNode) {
  EXPECT_EQ(uuidOfNode(0), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(uuidOfNode(255), "00000000-0000-0000-0000-0000000000ff");
}

}  // namespace
}  // namespace kelp::linux_
