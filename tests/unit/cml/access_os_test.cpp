#include "linux/access_os.h"

#include <gtest/gtest.h>

#include "host_tree.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

class AccessOsTest : public tolk_test::HostTree {
 protected:
  void drm(const std::string& sbdf, const std::string& name) const {
    folder("/sys/devices/pci0000:00/" + sbdf + "/drm/" + name);
  }
};

TEST_F(AccessOsTest, AddressIsThatOfTheFunctionWithTheMiscName) {
  boundFunction("0000:01:00.0", "0x0410", {0});
  boundFunction("0000:41:00.0", "0x0410", {1, 10});
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.0"), "0000:01:00.0");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.1"), "0000:41:00.0");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.10"), "0000:41:00.0");
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(AccessOsTest, NameThatNoFunctionHasGivesNoAddress) {
  boundFunction("0000:01:00.0", "0x0410", {10});
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.1"), "");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("gpu.10"), "");
}

TEST_F(AccessOsTest, WithoutADriverThereIsNoAddress) {
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.0"), "");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> iterFiles() fail to open : /sys/bus/pci/drivers/ovgpu "));
}

TEST_F(AccessOsTest, OnlyLinksWithTheFormOfAnAddressAreLookedAt) {
  folder("/sys/bus/pci/drivers/ovgpu/0000:01:00.0/misc/ovgpu.0");  // a folder
  folder("/sys/devices/module/misc/ovgpu.0");
  link("/sys/bus/pci/drivers/ovgpu/module", "/sys/devices/module");
  link("/sys/bus/pci/drivers/ovgpu/zzzz:01:00.0", "/sys/devices/module");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.0"), "");
}

TEST_F(AccessOsTest, PointOfTheAddressStandsForAnyCharacter) {
  folder("/sys/devices/odd/misc/ovgpu.0");
  link("/sys/bus/pci/drivers/ovgpu/0000:01:00-0", "/sys/devices/odd");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.0"), "0000:01:00-0");
}

TEST_F(AccessOsTest, MiscNameMustBeAFolder) {
  boundFunction("0000:01:00.0", "0x0410", {});
  file("/sys/devices/pci0000:00/0000:01:00.0/misc/ovgpu.0");
  EXPECT_EQ(AccessOs::getPciBdfFromSysfs("ovgpu.0"), "");
}

TEST_F(AccessOsTest, DrmNodeIsFoundByItsPrefix) {
  boundFunction("0000:01:00.0", "0x0410", {0});
  drm("0000:01:00.0", "card3");
  drm("0000:01:00.0", "renderD131");
  const auto card = AccessOs::getDrmDevPath("0000:01:00.0", "card");
  EXPECT_TRUE(card.ok());
  EXPECT_EQ(card.value(), "/dev/dri/card3");
  EXPECT_EQ(AccessOs::getDrmDevPath("0000:01:00.0", "renderD").value(), "/dev/dri/renderD131");
}

TEST_F(AccessOsTest, DrmNodeThatIsMissingIsAFailure) {
  boundFunction("0000:01:00.0", "0x0410", {0});
  EXPECT_EQ(AccessOs::getDrmDevPath("0000:01:00.0", "card").state(), KelpReturn::kFailure);
  drm("0000:01:00.0", "cards");
  drm("0000:01:00.0", "version");
  const auto card = AccessOs::getDrmDevPath("0000:01:00.0", "card");
  EXPECT_EQ(card.state(), KelpReturn::kFailure);
  EXPECT_EQ(card.value(), "");
}

TEST_F(AccessOsTest, DescriptionHasWhatSysfsKnows) {
  boundFunction("0000:01:00.0", "0x0410", {5});
  drm("0000:01:00.0", "card0");
  drm("0000:01:00.0", "renderD128");
  const auto desc = AccessOs::getDeviceDescFromOs("ovgpu.5");
  ASSERT_TRUE(desc.ok());
  EXPECT_EQ(desc.value().uuid, "");
  EXPECT_EQ(desc.value().sbdf, "0000:01:00.0");
  EXPECT_EQ(desc.value().parentMiscId, 0U);
  EXPECT_TRUE(desc.value().kmdFlagA.ok());
  EXPECT_FALSE(desc.value().kmdFlagA.value());
  EXPECT_TRUE(desc.value().kmdFlagB.ok());
  EXPECT_FALSE(desc.value().kmdFlagB.value());
  EXPECT_EQ(desc.value().kmdValue32.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.value().kmdValue64.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(desc.value().miscPath.ok());
  EXPECT_EQ(desc.value().miscPath.value(), "/dev/ovgpu.5");
  EXPECT_EQ(desc.value().cardPath.value(), "/dev/dri/card0");
  EXPECT_EQ(desc.value().renderPath.value(), "/dev/dri/renderD128");
  EXPECT_EQ(desc.value().ionPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.value().wideName.state(), KelpReturn::kNotSupported);
}

TEST_F(AccessOsTest, DescriptionOfANameWithoutAPointFailsAtOnce) {
  EXPECT_EQ(AccessOs::getDeviceDescFromOs("ovgpu").state(), KelpReturn::kFailure);
  ASSERT_EQ(log_.lines.size(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> ovgpu  format is not ovgpu.x "));
}

TEST_F(AccessOsTest, DescriptionWithoutARenderNodeIsAFailure) {
  boundFunction("0000:01:00.0", "0x0410", {0});
  drm("0000:01:00.0", "card0");
  const auto desc = AccessOs::getDeviceDescFromOs("ovgpu.0");
  EXPECT_EQ(desc.state(), KelpReturn::kFailure);
  EXPECT_EQ(desc.value().sbdf, "");
  EXPECT_EQ(desc.value().cardPath.state(), KelpReturn::kNotSupported);
}

TEST_F(AccessOsTest, DescriptionOfAnUnboundDeviceIsAFailure) {
  boundFunction("0000:01:00.0", "0x0410", {0});
  EXPECT_EQ(AccessOs::getDeviceDescFromOs("ovgpu.1").state(), KelpReturn::kFailure);
}

TEST_F(AccessOsTest, VpuIsEnabledWithItsDriverAndUnlessSwitchedOff) {
  folder("/sys/bus/platform/drivers/ovgpu_vde");
  const std::pair<const char*, bool> rows[] = {
      {"0\n", true}, {" 0 ", true}, {"1\n", false}, {"", false}, {"00\n", false}};
  for (const auto& [text, expected] : rows) {
    file("/sys/module/ovgpu/parameters/disable_vpu", text);
    const auto enabled = AccessOs::isVpuEnable();
    EXPECT_TRUE(enabled.ok()) << text;
    EXPECT_EQ(enabled.value(), expected) << text;
  }
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> disable_vpu  parameter read from file value is  0\n "));
}

TEST_F(AccessOsTest, VpuIsDisabledWithoutItsDriver) {
  file("/sys/module/ovgpu/parameters/disable_vpu", "0\n");
  const auto enabled = AccessOs::isVpuEnable();
  EXPECT_TRUE(enabled.ok());
  EXPECT_FALSE(enabled.value());
}

TEST_F(AccessOsTest, VpuWithoutItsParameterIsAFailedRead) {
  folder("/sys/bus/platform/drivers/ovgpu_vde");
  const auto enabled = AccessOs::isVpuEnable();
  EXPECT_EQ(enabled.state(), KelpReturn::kReadFailed);
  EXPECT_FALSE(enabled.value());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> read from  /sys/module/ovgpu/parameters/disable_vpu  failed "));
}

}  // namespace
}  // namespace kelp::linux_
