#include "linux/ap/access_point.h"

#include <gtest/gtest.h>

#include "driver_script.h"
#include "unit/cml/host_tree.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::put;

constexpr const char* kMisc = "/dev/ovgpu.255";
constexpr const char* kRender = "/dev/dri/renderD128";
constexpr const char* kNodeUuid = "00000000-0000-0000-0000-0000000000ff";
constexpr const char* kChipUuid = "69a595f8-b61c-1978-3817-019f596bec2d";

/// Device 255, whose driver has every interface that initialisation asks for.
class AccessPointTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    driver_.allowOpen(kMisc);
    driver_.on(8, [this](std::uint8_t* payload) {
      put<std::uint16_t>(payload, 0, 255);
      put<std::uint32_t>(payload, 16, devType_);
      put<std::uint16_t>(payload, 28, 0);
      put<std::uint16_t>(payload, 30, renderId_);
      put<std::uint16_t>(payload, 32, 2);
      return 0U;
    });
    driver_.on(52, [this](std::uint8_t* payload) {
      put<std::uint32_t>(payload, 4, rtos_);
      return 0U;
    });
    // A chip of the second line without identity: the driver moves the window to its bank.
    driver_.on(62, [](std::uint8_t* payload) {
      put<std::uint32_t>(payload, 0, 2048);
      put<std::uint32_t>(payload, 4, 1024);
      return 0U;
    });
  }

  /// The bits of a chip whose uuid is `kChipUuid`.
  void burnIdentity() {
    driver_.on(62, [](std::uint8_t* payload) {
      put<std::uint32_t>(payload, 0, 2048);
      put<std::uint32_t>(payload, 4, 1024);
      put<std::uint32_t>(payload, 8 + 7 * 4, 0x3456789A);
      put<std::uint32_t>(payload, 8 + 8 * 4, 0x556AF012);
      put<std::uint32_t>(payload, 8 + 14 * 4, 0x02000030);
      return 0U;
    });
  }

  void enableVpu() const {
    file("/sys/module/ovgpu/parameters/disable_vpu", "0\n");
    folder("/sys/bus/platform/drivers/ovgpu_vde");
  }

  void bindFunction() const {
    boundFunction("0000:41:00.0", "0x0230", {255});
    folder("/sys/devices/pci0000:00/0000:41:00.0/drm/card0");
    folder("/sys/devices/pci0000:00/0000:41:00.0/drm/renderD128");
  }

  void unlist(std::uint16_t interface) {
    std::erase_if(driver_.listed, [=](const tolk_test::Listed& entry) { return entry.name == interface; });
  }

  static DevCuid cuid(DevType type = DevType::kPhysical, DevArch arch = DevArch::kFen1) {
    return {.type = type, .arch = arch, .sbdf = 0x410000, .intId = 255};
  }

  std::string uuidOf(const DevCuid& device) {
    AccessPoint point(device);
    EXPECT_TRUE(point.init().ok());
    return point.getDevDesc().value().uuid;
  }

  DriverScript driver_{{{8, 1, 2}, {14, 1, 1}, {52, 1, 1}, {62, 1, 1}, {67, 0, 0}}};
  std::uint32_t devType_ = 0;
  std::uint16_t renderId_ = 128;
  std::uint32_t rtos_ = 20001;
};

TEST_F(AccessPointTest, DescriptionIsUnsupportedUntilInitSucceeds) {
  AccessPoint point(cuid());
  EXPECT_EQ(point.getDevDesc().state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(driver_.calls.empty());
  ASSERT_TRUE(point.init().ok());
  ASSERT_TRUE(point.getDevDesc().ok());
  EXPECT_EQ(point.getDevDesc().value().miscPath.value(), kMisc);
  EXPECT_EQ(point.getCuid(), cuid());
}

TEST_F(AccessPointTest, InitTwiceRunsTheKernelCallsOnce) {
  enableVpu();
  driver_.allowRender(kRender);
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  const std::size_t calls = driver_.calls.size();
  EXPECT_EQ(driver_.called(8), 1U);
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(driver_.calls.size(), calls);
  EXPECT_EQ(driver_.opens(kMisc), 1U);
  EXPECT_EQ(driver_.opens(kRender), 1U);
}

TEST_F(AccessPointTest, FailedInitIsTriedAgain) {
  driver_.allowOpen(kMisc, EBUSY);
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kFailure);
  EXPECT_EQ(point.getDevDesc().state(), KelpReturn::kNotSupported);
  driver_.allowOpen(kMisc);
  EXPECT_TRUE(point.init().ok());
  EXPECT_TRUE(point.getDevDesc().ok());
}

TEST_F(AccessPointTest, DriverTooNewLogsTheStateOfTheNegotiation) {
  driver_.currentMajor = 2;
  driver_.currentMinor = 2;
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kDriverTooNew);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> misc context init failed, state =  4 "));
  EXPECT_FALSE(driver_.isOpen(kMisc));
}

// The description.

TEST_F(AccessPointTest, DriverWithoutDescriptionIsDescribedBySysfs) {
  unlist(8);
  burnIdentity();
  bindFunction();
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  const DevDesc& desc = point.getDevDesc().value();
  EXPECT_EQ(desc.sbdf, "0000:41:00.0");
  EXPECT_EQ(desc.renderPath.value(), kRender);
  EXPECT_EQ(desc.uuid, kChipUuid) << "sysfs has no uuid, the chip has";
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get description failed, state =  3 "));
  EXPECT_TRUE(log_.has(LogLevel::kWarn,
                       ">> Failed to query device desc from kmd, next to get info from os instead "));
}

TEST_F(AccessPointTest, DescriptionInVersionsTooNewIsTakenFromSysfs) {
  unlist(8);
  driver_.listed.push_back({8, 3, 5});
  bindFunction();
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get description failed, state =  4 "));
  EXPECT_EQ(driver_.called(8), 0U);
}

TEST_F(AccessPointTest, FailingDescriptionIsTakenFromSysfs) {
  driver_.on(8, [](std::uint8_t*) { return 10U; });
  bindFunction();
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> failed to query device description, access error is  11 "));
  EXPECT_FALSE(log_.has("get description failed"));
  EXPECT_TRUE(
      log_.has(LogLevel::kWarn, "Failed to query device desc from kmd, next to get info from os instead"));
}

TEST_F(AccessPointTest, DeviceThatNobodyDescribesIsLeftOut) {
  unlist(8);
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> query device desc from os failed. "));
  EXPECT_FALSE(driver_.isOpen(kMisc));
}

TEST_F(AccessPointTest, DriverThatAnswersNoProbeIsDescribedBySysfsAndNamedByItsNode) {
  driver_.fail(DriverScript::kProbe, ENOTTY);
  driver_.fail(DriverScript::kOldProbe, ENOTTY);
  bindFunction();
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.getDevDesc().value().uuid, kNodeUuid);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get description failed, state =  3 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get efuse failed "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> /dev/ovgpu.255  read fw version failed, state =  6 "));
  EXPECT_EQ(point.doExec(QueryTemperCmd({.sensorId = 9})).state(), KelpReturn::kNotSupported);
}

// The uuid.

TEST_F(AccessPointTest, ChipWithIdentityNamesTheDevice) {
  burnIdentity();
  EXPECT_EQ(uuidOf(cuid()), kChipUuid);
  EXPECT_FALSE(log_.has("get efuse failed"));
}

TEST_F(AccessPointTest, WindowOfTheFirstChipLineIsTakenFromTheReply) {
  driver_.on(62, [](std::uint8_t* payload) {
    EXPECT_EQ(tolk_test::get<std::uint32_t>(payload, 0), 2048U);
    EXPECT_EQ(tolk_test::get<std::uint32_t>(payload, 4), 1024U);
    put<std::uint32_t>(payload, 0, 0);
    put<std::uint32_t>(payload, 8 + 8 * 4, 0x3456789A);
    put<std::uint32_t>(payload, 8 + 9 * 4, 0x556AF012);
    put<std::uint32_t>(payload, 8 + 10 * 4, 0x70100000);
    return 0U;
  });
  AccessPoint point(cuid(DevType::kPhysical, DevArch::kWold));
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.getDevDesc().value().uuid, kChipUuid);
  EXPECT_EQ(point.doExec(QueryEfuseCmd()).value().deviceId.value(), 0x010FU);
}

TEST_F(AccessPointTest, EfuseOfZerosNamesTheDeviceByItsNode) {
  EXPECT_EQ(uuidOf(cuid()), kNodeUuid);
  EXPECT_EQ(uuidOf(cuid(DevType::kMpcInstance)), kNodeUuid);
  EXPECT_EQ(driver_.called(14), 0U) << "an instance without chip value has no use for its profile";
}

TEST_F(AccessPointTest, InstanceIsNamedByItsProfileAndParentToo) {
  burnIdentity();
  devType_ = 2;
  driver_.on(14, [](std::uint8_t* payload) {
    put<std::uint16_t>(payload, 0, 0x0103);
    return 0U;
  });
  EXPECT_EQ(uuidOf(cuid(DevType::kMpcInstance)), "dc232c4f-be45-7e4c-6c7f-15f75f54c8fb");
}

TEST_F(AccessPointTest, InstanceWithoutItsProfileIsLeftOut) {
  burnIdentity();
  driver_.on(14, [](std::uint8_t*) { return 7U; });
  AccessPoint point(cuid(DevType::kMpcInstance));
  EXPECT_EQ(point.init().state(), KelpReturn::kBusy);
}

TEST_F(AccessPointTest, DriverWithoutEfuseNamesTheDeviceByItsNode) {
  unlist(62);
  EXPECT_EQ(uuidOf(cuid()), kNodeUuid);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get efuse failed "));
}

TEST_F(AccessPointTest, FourthChipLineIsNamedByItsNodeWhateverItsBitsSay) {
  burnIdentity();
  EXPECT_EQ(uuidOf(cuid(DevType::kPhysical, DevArch::kTor1)), kNodeUuid);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> AccessPoint::doExec<QueryEfuseCmd>(): Unsupported arch =  4 "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get efuse failed "));
}

TEST_F(AccessPointTest, EfuseThatCannotBeReadLeavesTheDeviceOut) {
  driver_.on(62, [](std::uint8_t*) { return 11U; });
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kReadFailed);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get efuse failed "));
  EXPECT_EQ(point.getDevDesc().state(), KelpReturn::kNotSupported);
}

TEST_F(AccessPointTest, GuestHasNoUuidAndNoFirmware) {
  EXPECT_EQ(uuidOf(cuid(DevType::kGuest)), "");
  EXPECT_EQ(driver_.called(62), 0U);
  EXPECT_EQ(driver_.called(52), 0U);
}

// The render node.

TEST_F(AccessPointTest, CoresAreServedOverTheRenderNode) {
  enableVpu();
  driver_.allowRender(kRender);
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.doExec(QueryVpuSpecCmd()).value().size(), 1U);
}

TEST_F(AccessPointTest, MpcParentNeverGetsARenderContext) {
  enableVpu();
  driver_.allowRender(kRender);
  AccessPoint point(cuid(DevType::kMpcParent));
  ASSERT_TRUE(point.init().ok());
  EXPECT_TRUE(point.getDevDesc().value().renderPath.ok());
  EXPECT_EQ(driver_.opens(kRender), 0U);
  EXPECT_EQ(point.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log_.has(
      LogLevel::kInfo,
      ">> not init render context, device type is  2  vpu enable state is  0  vpu enable value is  1 "));
}

TEST_F(AccessPointTest, DisabledVpuNeedsNoRenderContext) {
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_TRUE(log_.has(
      LogLevel::kInfo,
      ">> not init render context, device type is  1  vpu enable state is  8  vpu enable value is  0 "));
  enableVpu();
  file("/sys/module/ovgpu/parameters/disable_vpu", "1\n");
  AccessPoint disabled(cuid());
  ASSERT_TRUE(disabled.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kInfo, "vpu enable state is  0  vpu enable value is  0 "));
}

TEST_F(AccessPointTest, DeviceWithoutRenderNodeNeedsNoRenderContext) {
  enableVpu();
  renderId_ = 65535;
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.getDevDesc().value().renderPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
}

TEST_F(AccessPointTest, RenderNodeThatCannotBeOpenedLeavesTheDeviceOut) {
  enableVpu();
  driver_.allowOpen(kRender, EACCES);
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> render context init failed, state =  1 "));
  EXPECT_EQ(point.getDevDesc().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point.doExec(QueryPstateCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_FALSE(driver_.isOpen(kMisc));
}

TEST_F(AccessPointTest, RenderNodeOfAnotherProtocolLeavesTheDeviceOut) {
  enableVpu();
  driver_.allowRender(kRender);
  driver_.answer(DriverScript::kRenderProbe, [](std::uint8_t* r) {
    put<std::uint16_t>(r, 0, 1);
    put<std::uint16_t>(r, 2, 1);
    return 0;
  });
  AccessPoint point(cuid());
  EXPECT_EQ(point.init().state(), KelpReturn::kDriverTooNew);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> render context init failed, state =  4 "));
}

TEST_F(AccessPointTest, VpuWithoutItsCoresAnswersNotSupportedWhileTheRestWorks) {
  enableVpu();
  driver_.allowRender(kRender);
  driver_.fail(DriverScript::kRenderInline, EIO);
  driver_.on(67, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 0, 7);
    return 0U;
  });
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> render context init failed, state =  1 "));
  EXPECT_EQ(point.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point.doExec(QueryPstateCmd()).value(), 7U);
  EXPECT_FALSE(driver_.isOpen(kRender));
}

// The firmware.

TEST_F(AccessPointTest, FirmwareOfTheFourthChipLineIsNeverTooOld) {
  for (const std::uint32_t version : {0U, 1U, 20001U}) {
    rtos_ = version;
    AccessPoint point(cuid(DevType::kPhysical, DevArch::kTor1));
    ASSERT_TRUE(point.init().ok());
  }
  EXPECT_FALSE(log_.has("fw version"));
  EXPECT_FALSE(log_.has("rtos version"));
}

TEST_F(AccessPointTest, OldFirmwareWarnsAndIsNoFailure) {
  struct Row {
    DevArch arch;
    std::uint32_t lowest;
    const char* line;
  };
  constexpr Row kRows[] = {
      {DevArch::kWold, 703,
       ">> /dev/ovgpu.255  arch is  1 rtos version is  702  fw version is out-of-date, please update "
       "ovbios! "},
      {DevArch::kFen1, 20001,
       ">> /dev/ovgpu.255  arch is  2 rtos version is  20000  fw version is out-of-date, please update "
       "ovbios! "},
      {DevArch::kFen2, 20001,
       ">> /dev/ovgpu.255  arch is  3 rtos version is  20000  fw version is out-of-date, please update "
       "ovbios! "},
  };
  driver_.on(62, [](std::uint8_t*) { return 5U; });
  for (const Row& row : kRows) {
    rtos_ = row.lowest;
    AccessPoint newEnough(cuid(DevType::kPhysical, row.arch));
    ASSERT_TRUE(newEnough.init().ok());
    EXPECT_FALSE(log_.has(row.line));
    EXPECT_EQ(log_.count("out-of-date"), static_cast<std::size_t>(&row - kRows));
    rtos_ = row.lowest - 1;
    AccessPoint old(cuid(DevType::kPhysical, row.arch));
    EXPECT_TRUE(old.init().ok());
    EXPECT_TRUE(log_.has(LogLevel::kWarn, row.line));
  }
}

TEST_F(AccessPointTest, FirmwareThatIsNotToldIsLogged) {
  rtos_ = 0xFFFFFFFF;
  AccessPoint untold(cuid());
  EXPECT_TRUE(untold.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> /dev/ovgpu.255 get rtos version failed "));
  driver_.on(52, [](std::uint8_t*) { return 10U; });
  AccessPoint failing(cuid());
  EXPECT_TRUE(failing.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> /dev/ovgpu.255  read fw version failed, state =  11 "));
}

TEST_F(AccessPointTest, FirmwareOfAnUnknownChipLineCannotBeJudged) {
  AccessPoint point(cuid(DevType::kPhysical, DevArch::kUnknown));
  EXPECT_TRUE(point.init().ok());
  EXPECT_TRUE(log_.has(LogLevel::kError,
                       ">> /dev/ovgpu.255  arch is  0  not supported. Fw version cannot be validated! "));
}

// Commands.

TEST_F(AccessPointTest, CommandsSayWhyThereIsNoAgreement) {
  driver_.listed = {{8, 1, 2}, {2, 4, 9}, {3, 0, 0}};
  AccessPoint point(cuid());
  EXPECT_EQ(point.doExec(QueryPstateCmd()).state(), KelpReturn::kNotSupported) << "no context yet";
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.doExec(QueryPstateCmd()).state(), KelpReturn::kNotSupported) << "not listed";
  EXPECT_EQ(point.doExec(QueryGpuStatusCmd()).state(), KelpReturn::kDriverTooNew);
  EXPECT_EQ(point.doExec(QueryMemUsageCmd()).state(), KelpReturn::kDriverTooOld);
}

TEST_F(AccessPointTest, PciFactsOfTheDriverAreTakenAsTheyAre) {
  driver_.listed.push_back({6, 1, 1});
  driver_.on(6, [](std::uint8_t* payload) {
    put<std::uint16_t>(payload, 2, 0x0231);
    return 0U;
  });
  bindFunction();
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  const auto info = point.doExec(QueryPcieInfoCmd());
  ASSERT_TRUE(info.ok());
  EXPECT_EQ(info.value().deviceId.value(), 0x0231U) << "sysfs says 0x0230";
  EXPECT_EQ(info.value().busWidth.state(), KelpReturn::kNotSupported) << "the driver does not tell it";
  EXPECT_FALSE(log_.has("get pci info from kmd error"));
}

TEST_F(AccessPointTest, PciFactsComeFromSysfsWhenTheDriverFails) {
  const std::string function = "/sys/devices/pci0000:00/0000:41:00.0/";
  bindFunction();
  file(function + "vendor", "0x4f56\n");
  file(function + "max_link_speed", "16.0 GT/s PCIe\n");
  file(function + "current_link_speed", "8.0 GT/s PCIe\n");
  file(function + "max_link_width", "16\n");
  file(function + "current_link_width", "8\n");
  file(function + "config", std::string(64, '\0'));
  file(function + "resource", "0x0000000000000000 0x0000000000000000 0x0000000000000000\n");
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  const auto info = point.doExec(QueryPcieInfoCmd());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get pci info from kmd error. error state is  6 "));
  ASSERT_TRUE(info.ok());
  EXPECT_EQ(info.value().deviceId.value(), 0x0230U);
  EXPECT_EQ(info.value().maxLinkWidth.value(), 16U);

  driver_.listed.push_back({6, 1, 1});
  driver_.on(6, [](std::uint8_t*) { return 11U; });
  AccessPoint listed(cuid());
  ASSERT_TRUE(listed.init().ok());
  EXPECT_EQ(listed.doExec(QueryPcieInfoCmd()).value().deviceId.value(), 0x0230U);
  EXPECT_EQ(driver_.called(6), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> get pci info from kmd error. error state is  8 "));
}

TEST_F(AccessPointTest, PciFactsOfADeviceThatSysfsLacksFail) {
  AccessPoint point(cuid());
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.doExec(QueryPcieInfoCmd()).state(), KelpReturn::kFailure);
}

TEST_F(AccessPointTest, ParentOfAnInstanceIsItsAddress) {
  driver_.listed.push_back({13, 1, 1});
  driver_.on(13, [](std::uint8_t* payload) {
    put<std::uint16_t>(payload, 0, 2);
    return 0U;
  });
  AccessPoint point(cuid(DevType::kMpcInstance));
  ASSERT_TRUE(point.init().ok());
  EXPECT_EQ(point.doExec(QueryMpcParentCmd()).state(), KelpReturn::kNotFound);
  boundFunction("0001:41:00.0", "0x0230", {2, 255});
  EXPECT_EQ(point.doExec(QueryMpcParentCmd()).value(), 0x100410000UL);
}

}  // namespace
}  // namespace kelp::linux_
