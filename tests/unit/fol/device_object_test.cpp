#include "device_object.h"

#include <gtest/gtest.h>

#include "fen2/fen2_device_factory.h"
#include "physical_device.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"
#include "tor1/tor1_device_factory.h"

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::FakePlatform;
using tolk_test::LogCapture;
using tolk_test::makeCuid;

class DeviceObjectTest : public testing::Test {
 protected:
  DeviceObjectTest() {
    DevDesc desc;
    desc.uuid = "69a595f8-b61c-1978-3817-019f596bec2d";
    desc.sbdf = "0000:41:00.0";
    desc.kmdFlagA = true;
    desc.kmdFlagB = KelpReturn::kReadFailed;
    platform_.desc = desc;
    platform_.answer<QuerySmcFwVersionCmd>(
        FirmwareVersions{{"ov-bios", 20001U}, {"vbios", 7U}, {"rtos", KelpReturn::kFirmwareFailed}});
    platform_.answer<QueryInfoRomCmd>(DeviceInfoRom{.serialNumber = "SN-1", .brand = "OVT"});
  }

  std::shared_ptr<DeviceObj> make(DevType type) {
    return Fen2DeviceFactory().createDevice(makeCuid(type, DevArch::kFen2, 9), manager_).take();
  }
  std::shared_ptr<DeviceObj> makeReady(DevType type) {
    std::shared_ptr<DeviceObj> device = make(type);
    EXPECT_TRUE(device->init().ok());
    return device;
  }

  FakePlatform platform_;
  LogCapture log_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
};

TEST_F(DeviceObjectTest, AnswersState5BeforeInit) {
  for (const DevType type :
       {DevType::kPhysical, DevType::kMpcParent, DevType::kMpcInstance, DevType::kGuest}) {
    const std::shared_ptr<DeviceObj> device = make(type);
    EXPECT_EQ(device->getMpcInstCuids().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getMpcParentCuid().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getBrand().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getOvBiosVersion().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getRtosVersion().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->queryPciDeviceId().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getDeviceName().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getSerialNumber().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getMpcCapable().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->getSablinkCapable().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->queryPerfState().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->queryPcieInfo().state(), KelpReturn::kNotInitialized);
    EXPECT_EQ(device->queryProcessMemory().state(), KelpReturn::kNotInitialized);
  }
  EXPECT_TRUE(platform_.asked.empty());
}

TEST_F(DeviceObjectTest, InitReadsWhatIsKeptOnce) {
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kPhysical);
  EXPECT_TRUE(device->init().ok());
  EXPECT_EQ(platform_.asked,
            (std::vector<std::string>{"QuerySmcFwVersion", "QueryInfoRom", "QueryDisplayInterfaceSpec",
                                      "QueryDdrCap", "QuerySupportedVirtTypes", "QueryVpuSpec"}));

  EXPECT_EQ(device->getDesc().uuid, "69a595f8-b61c-1978-3817-019f596bec2d");
  EXPECT_EQ(device->getSerialNumber().value(), "SN-1");
  EXPECT_EQ(device->getBrand().value(), DevBrand::kOvt);
  EXPECT_EQ(device->getOvBiosVersion().value(), 20001U);
  EXPECT_EQ(device->getMpcCapable().value(), true);
  EXPECT_EQ(device->getSablinkCapable().state(), KelpReturn::kReadFailed);
  EXPECT_EQ(platform_.asked.size(), 6U);
}

TEST_F(DeviceObjectTest, Tor1AsksForItsMemoryLast) {
  const auto device =
      Tor1DeviceFactory().createDevice(makeCuid(DevType::kPhysical, DevArch::kTor1), manager_);
  EXPECT_TRUE(device.value()->init().ok());
  EXPECT_EQ(platform_.asked,
            (std::vector<std::string>{"QuerySmcFwVersion", "QueryInfoRom", "QueryDisplayInterfaceSpec",
                                      "QuerySupportedVirtTypes", "QueryVpuSpec", "QueryDdrCap"}));
}

TEST_F(DeviceObjectTest, AGuestIsNotAskedForItsBoard) {
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kGuest);
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"QueryDdrCap", "QueryVpuSpec"}));
  EXPECT_EQ(device->getSerialNumber().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(device->getBrand().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(device->getOvBiosVersion().state(), KelpReturn::kNotSupported);
}

TEST_F(DeviceObjectTest, AMissingDescriptionStopsInit) {
  platform_.desc = KelpReturn::kDeviceLost;
  const std::shared_ptr<DeviceObj> device = make(DevType::kPhysical);
  EXPECT_EQ(device->init().state(), KelpReturn::kDeviceLost);
  EXPECT_TRUE(log_.has(LogLevel::kError, "get device model failed. error code is  16 "));
  EXPECT_EQ(device->init().state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log_.has(LogLevel::kError, "get device description failed. error code is  6 "));
  EXPECT_EQ(device->getSerialNumber().state(), KelpReturn::kNotInitialized);
  EXPECT_EQ(device->getFeatures().gpu, nullptr);
}

TEST_F(DeviceObjectTest, UnreadableBoardDataDoesNotStopInit) {
  platform_.answer<QuerySmcFwVersionCmd>(KelpReturn::kFirmwareFailed);
  platform_.answer<QueryInfoRomCmd>(KelpReturn::kNoPermission);
  platform_.answer<QueryDdrCapCmd>(KelpReturn::kBusy);
  platform_.answer<QueryVpuSpecCmd>(KelpReturn::kAccessFailed);
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kPhysical);
  EXPECT_EQ(device->getOvBiosVersion().state(), KelpReturn::kFirmwareFailed);
  EXPECT_EQ(device->getSerialNumber().state(), KelpReturn::kNoPermission);
  EXPECT_EQ(device->getBrand().state(), KelpReturn::kNoPermission);
}

TEST_F(DeviceObjectTest, AComponentThatTheBoardDoesNotNameGivesState1) {
  platform_.answer<QuerySmcFwVersionCmd>(FirmwareVersions{{"vbios", 7U}});
  EXPECT_EQ(makeReady(DevType::kPhysical)->getOvBiosVersion().state(), KelpReturn::kFailure);
}

TEST_F(DeviceObjectTest, AComponentKeepsItsOwnState) {
  EXPECT_EQ(makeReady(DevType::kPhysical)->getRtosVersion().state(), KelpReturn::kFirmwareFailed);
}

TEST_F(DeviceObjectTest, AnyOtherBrandIsUnknown) {
  platform_.answer<QueryInfoRomCmd>(DeviceInfoRom{.serialNumber = "", .brand = "ovt"});
  EXPECT_EQ(makeReady(DevType::kPhysical)->getBrand().value(), DevBrand::kUnknown);
}

TEST_F(DeviceObjectTest, OnlyPhysicalDevicesHaveAPerformanceState) {
  platform_.answer<QueryPstateCmd>(8U);
  EXPECT_EQ(makeReady(DevType::kPhysical)->queryPerfState().value(), 8U);
  for (const DevType type : {DevType::kMpcParent, DevType::kMpcInstance, DevType::kGuest}) {
    EXPECT_EQ(makeReady(type)->queryPerfState().state(), KelpReturn::kNotSupported);
  }
  EXPECT_EQ(platform_.count("QueryPstate"), 1U);
}

TEST_F(DeviceObjectTest, ThePciDeviceIdIsAFieldOfThePciRecord) {
  PcieInfo info;
  info.deviceId = 0x0331U;
  platform_.answer<QueryPcieInfoCmd>(info);
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kPhysical);
  EXPECT_EQ(device->queryPciDeviceId().value(), 0x0331U);
  platform_.answer<QueryPcieInfoCmd>(KelpReturn::kReadFailed);
  EXPECT_EQ(device->queryPciDeviceId().state(), KelpReturn::kReadFailed);
}

TEST_F(DeviceObjectTest, VgpusAreThoseOfTheHost) {
  platform_.virtCuids = DevCuidSet{makeCuid(DevType::kMediated, DevArch::kFen2, 7),
                                   makeCuid(DevType::kMediated, DevArch::kFen2, 8)};
  const auto cuids = makeReady(DevType::kPhysical)->getVirtDevCuids();
  ASSERT_TRUE(cuids.ok());
  EXPECT_EQ(cuids.value().size(), 2U);
}

TEST_F(DeviceObjectTest, VgpusThatCannotBeListedKeepTheState) {
  platform_.virtCuids = KelpReturn::kReadFailed;
  EXPECT_EQ(makeReady(DevType::kPhysical)->getVirtDevCuids().state(), KelpReturn::kReadFailed);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to list virtual cuids for pcie device :  0000:41:00.0 "));
}

TEST_F(DeviceObjectTest, NodesAndCoresAreThoseOfTheDescription) {
  DevDesc desc;
  desc.kmdValue64 = 0xBUL;
  desc.miscPath = std::string("/dev/ovgpu.9");
  desc.cardPath = std::string("/dev/dri/card1");
  desc.renderPath = std::string("/dev/dri/renderD129");
  desc.ionPath = KelpReturn::kNotFound;
  platform_.desc = desc;
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kPhysical);
  EXPECT_EQ(device->getUsableCores().value(), 0xBUL);
  EXPECT_EQ(device->getMiscPath().value(), "/dev/ovgpu.9");
  EXPECT_EQ(device->getCardPath().value(), "/dev/dri/card1");
  EXPECT_EQ(device->getRenderPath().value(), "/dev/dri/renderD129");
  EXPECT_EQ(device->getIonPath().state(), KelpReturn::kNotFound);
  EXPECT_EQ(device->getWideName().state(), KelpReturn::kNotSupported);
}

TEST_F(DeviceObjectTest, PowerIsThatOfTheBoard) {
  platform_.answerBy<QueryPowerCmd>([](const DevCuid&, const QueryPowerCmd& cmd) {
    return Stated<unsigned int>(std::get<0>(cmd.params).domain == 0 ? 85500U : 1U);
  });
  EXPECT_EQ(makeReady(DevType::kMpcInstance)->queryPowerUsage().value(), 85500U);
}

TEST_F(DeviceObjectTest, WhatIsSetReachesTheDriver) {
  std::vector<unsigned int> sent;
  platform_.answerBy<SetPstateCmd>([&](const DevCuid&, const SetPstateCmd& cmd) {
    sent.push_back(std::get<0>(cmd.params).state);
    return Stated<int>(0);
  });
  platform_.answerBy<SetPowerLimitCmd>([&](const DevCuid&, const SetPowerLimitCmd& cmd) {
    sent.push_back(std::get<0>(cmd.params).limit + (std::get<0>(cmd.params).persistent ? 1 : 0));
    return Stated<int>(0);
  });
  platform_.answerBy<QueryPowerLimitCmd>([](const DevCuid&, const QueryPowerLimitCmd& cmd) {
    return Stated<unsigned int>(static_cast<unsigned int>(std::get<0>(cmd.params)));
  });
  platform_.answerBy<QueryProcGpuUtilCmd>([&](const DevCuid&, const QueryProcGpuUtilCmd& cmd) {
    sent.push_back(static_cast<unsigned int>(std::get<0>(cmd.params).lastSeen));
    return Stated<ProcessGpuUtilMap>(ProcessGpuUtilMap{});
  });
  const auto device =
      Tor1DeviceFactory().createDevice(makeCuid(DevType::kPhysical, DevArch::kTor1), manager_).take();
  ASSERT_TRUE(device->init().ok());
  EXPECT_TRUE(device->setPerfState(15).ok());
  EXPECT_TRUE(device->setPowerLimit({.limit = 250000, .persistent = true}).ok());
  EXPECT_TRUE(device->queryProcessGpuUtil(123).ok());
  EXPECT_EQ(sent, (std::vector<unsigned int>{15, 250001, 123}));
  EXPECT_EQ(device->queryPowerLimit(PowerLimitType::kMaximum).value(), 5U);
}

TEST_F(DeviceObjectTest, AResetIsOfTheDeviceAndOneOfItsEventsIsAnother) {
  platform_.answer<ResetDeviceCmd>(0);
  platform_.answer<ResetDeviceEventMsgsCmd>(0);
  const std::shared_ptr<DeviceObj> device = makeReady(DevType::kPhysical);
  platform_.asked.clear();
  EXPECT_TRUE(device->resetDevice().ok());
  EXPECT_TRUE(device->resetDeviceEventMsgs().ok());
  EXPECT_EQ(platform_.asked, (std::vector<std::string>{"ResetDevice", "ResetDeviceEventMsgs"}));
}

TEST_F(DeviceObjectTest, ProcessesAreThoseOfTheDriver) {
  platform_.answer<QueryProcMemStateCmd>(
      ProcessMemoryMap{{42, {.gpuMemory = 1024, .systemMemory = 0, .kind = 1, .pid = 42}}});
  EXPECT_EQ(makeReady(DevType::kMpcInstance)->queryProcessMemory().value().at(42).gpuMemory, 1024U);
}

}  // namespace
}  // namespace kelp
