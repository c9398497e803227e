#include "device_manager.h"

#include <gtest/gtest.h>

#include <thread>

#include "device_object.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::FakePlatform;
using tolk_test::LogCapture;
using tolk_test::makeCuid;

class DeviceManagerTest : public testing::Test {
 protected:
  DeviceManagerTest() { EXPECT_TRUE(manager_.init().ok()); }

  FakePlatform platform_;
  LogCapture log_;
  DeviceManager manager_;
};

TEST_F(DeviceManagerTest, AnswersState5BeforeInit) {
  DeviceManager fresh;
  EXPECT_EQ(fresh.listDevice().state(), KelpReturn::kNotInitialized);
  EXPECT_EQ(fresh.getDevice(makeCuid(DevType::kPhysical, DevArch::kTor1)).state(),
            KelpReturn::kNotInitialized);
}

TEST_F(DeviceManagerTest, InitMayBeRepeated) {
  EXPECT_TRUE(manager_.init().ok());
}

TEST_F(DeviceManagerTest, ListsDevicesByInternalId) {
  platform_.pcieCuids = DevCuidSet{makeCuid(DevType::kPhysical, DevArch::kTor1, 10),
                                   makeCuid(DevType::kPhysical, DevArch::kTor1, 2),
                                   makeCuid(DevType::kMpcParent, DevArch::kFen2, 7)};
  const auto cuids = manager_.listDevice();
  ASSERT_EQ(cuids.value().size(), 3U);
  EXPECT_EQ(cuids.value()[0].intId, 2U);
  EXPECT_EQ(cuids.value()[1].intId, 7U);
  EXPECT_EQ(cuids.value()[2].intId, 10U);
}

TEST_F(DeviceManagerTest, AnEmptyMachineIsAnEmptyList) {
  const auto cuids = manager_.listDevice();
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
}

TEST_F(DeviceManagerTest, AFailedEnumerationKeepsItsState) {
  platform_.pcieCuids = KelpReturn::kDriverNotLoaded;
  EXPECT_EQ(manager_.listDevice().state(), KelpReturn::kDriverNotLoaded);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to list pcie cuids!"));
}

TEST_F(DeviceManagerTest, EqualIdentitiesGiveTheSameObject) {
  const auto first = manager_.getDevice(makeCuid(DevType::kPhysical, DevArch::kTor1, 3));
  const auto second = manager_.getDevice(makeCuid(DevType::kPhysical, DevArch::kTor1, 3));
  const auto other = manager_.getDevice(makeCuid(DevType::kPhysical, DevArch::kTor1, 4));
  ASSERT_NE(first.value(), nullptr);
  EXPECT_EQ(first.value(), second.value());
  EXPECT_NE(first.value(), other.value());
  EXPECT_EQ(platform_.modelInits, 2);
}

TEST_F(DeviceManagerTest, AnUnknownFamilyIsRefusedAndLeavesNothingBehind) {
  for (const unsigned arch : {0U, 5U}) {
    const DevCuid cuid = makeCuid(DevType::kPhysical, static_cast<DevArch>(arch));
    EXPECT_EQ(manager_.getDevice(cuid).state(), KelpReturn::kFailure);
    EXPECT_EQ(manager_.getDevice(cuid).state(), KelpReturn::kFailure);
    EXPECT_EQ(log_.count("Unsupported arch :  " + std::to_string(arch) + " "), 2U);
  }
  EXPECT_TRUE(platform_.asked.empty());
}

TEST_F(DeviceManagerTest, ATypeThatTheFamilyLacksIsLoggedWithItsIdentity) {
  EXPECT_EQ(manager_.getDevice(makeCuid(DevType::kGuest, DevArch::kTor1, 6)).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to create device :  0000:41:00.0-TOR1-GDEV-int6 "));
}

TEST_F(DeviceManagerTest, ADeviceWithoutDescriptionIsTriedAgain) {
  const DevCuid cuid = makeCuid(DevType::kPhysical, DevArch::kFen2, 1);
  platform_.desc = KelpReturn::kAccessFailed;
  EXPECT_EQ(manager_.getDevice(cuid).state(), KelpReturn::kAccessFailed);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to initialize device :  0000:41:00.0-FEN2-PHY-int1 "));

  // The model is kept, so the state is now the one of a description that was never read.
  EXPECT_EQ(manager_.getDevice(cuid).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(platform_.modelInits, 1);
  EXPECT_EQ(log_.count("Failed to initialize device"), 2U);
}

TEST_F(DeviceManagerTest, AVgpuIsADeviceOfItsOwn) {
  const DevCuid carrier = makeCuid(DevType::kPhysical, DevArch::kFen1, 0);
  const DevCuid vgpu = makeCuid(DevType::kMediated, DevArch::kFen1, 7);
  platform_.virtCuids = DevCuidSet{vgpu};
  const auto cuids = manager_.getDevice(carrier).value()->getVirtDevCuids();
  ASSERT_EQ(cuids.value(), std::vector<DevCuid>{vgpu});
  const auto device = manager_.getDevice(cuids.value().front());
  ASSERT_TRUE(device.ok());
  EXPECT_EQ(device.value()->getDeviceName().state(), KelpReturn::kNotSupported);
  EXPECT_NE(device.value()->getFeatures().virt, nullptr);
}

TEST_F(DeviceManagerTest, AllDevicesButOneAreClosedAndReopened) {
  manager_.closeOtherDevices(makeCuid(DevType::kPhysical, DevArch::kTor1, 3));
  manager_.reopenOtherDevices(makeCuid(DevType::kPhysical, DevArch::kTor1, 3));
  EXPECT_EQ(platform_.othersTouched, (std::vector<std::string>{"close 3", "reopen 3"}));
}

TEST_F(DeviceManagerTest, DistancesAndAdaptersAreAskedOfSysfs) {
  platform_.topologyLevel = TopologyLevel::kHostBridge;
  platform_.nics = std::vector<std::string>{"0000:17:00.0"};
  EXPECT_EQ(DeviceManager::queryTopologyLevel("0000:01:00.0", "0000:41:00.0").value(),
            TopologyLevel::kHostBridge);
  EXPECT_EQ(platform_.topologyOf, std::pair(std::string("0000:01:00.0"), std::string("0000:41:00.0")));
  EXPECT_EQ(DeviceManager::queryNicDevices().value(), (std::vector<std::string>{"0000:17:00.0"}));
  platform_.topologyLevel = KelpReturn::kFailure;
  platform_.nics = KelpReturn::kReadFailed;
  EXPECT_EQ(DeviceManager::queryTopologyLevel("", "").state(), KelpReturn::kFailure);
  EXPECT_EQ(DeviceManager::queryNicDevices().state(), KelpReturn::kReadFailed);
}

TEST_F(DeviceManagerTest, ADeviceIsMadeOnceWhenManyThreadsWantIt) {
  std::vector<std::shared_ptr<DeviceObj>> devices(8);
  std::vector<std::thread> threads;
  for (auto& device : devices) {
    threads.emplace_back(
        [&] { device = manager_.getDevice(makeCuid(DevType::kPhysical, DevArch::kTor1)).take(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& device : devices) {
    EXPECT_NE(device, nullptr);
    EXPECT_EQ(device, devices.front());
  }
  EXPECT_EQ(platform_.modelInits, 1);
  EXPECT_EQ(platform_.count("QueryInfoRom"), 1U);
}

}  // namespace
}  // namespace kelp
