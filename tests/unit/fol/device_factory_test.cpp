#include <gtest/gtest.h>

#include <memory>

#include "device_object.h"
#include "fen1/fen1_device_factory.h"
#include "fen2/fen2_device_factory.h"
#include "guest_device.h"
#include "mpc_instance_device.h"
#include "mpc_parent_device.h"
#include "physical_device.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"
#include "tor1/tor1_device_factory.h"
#include "wold/wold_device_factory.h"

// Which class, with which features, each family makes for each type of device.

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::FakePlatform;
using tolk_test::LogCapture;
using tolk_test::makeCuid;

struct FamilyCase {
  DevArch arch;
  std::shared_ptr<DeviceFactory> factory;
};

std::vector<FamilyCase> families() {
  return {{DevArch::kWold, std::make_shared<WoldDeviceFactory>()},
          {DevArch::kFen1, std::make_shared<Fen1DeviceFactory>()},
          {DevArch::kFen2, std::make_shared<Fen2DeviceFactory>()},
          {DevArch::kTor1, std::make_shared<Tor1DeviceFactory>()}};
}

class DeviceFactoryTest : public testing::Test {
 protected:
  std::shared_ptr<DeviceObj> make(DevArch arch, DevType type) {
    const Stated<std::shared_ptr<DeviceObj>> device =
        families()[static_cast<std::size_t>(arch) - 1].factory->createDevice(makeCuid(type, arch), manager_);
    return device.value();
  }

  /// The features of an initialised device, as letters: Gpu, Memory, mPc, Vpu, Ecc.
  std::string features(DevArch arch, DevType type) {
    const std::shared_ptr<DeviceObj> device = make(arch, type);
    if (device == nullptr) {
      return "no device";
    }
    EXPECT_TRUE(device->init().ok());
    const Features& made = device->getFeatures();
    std::string letters;
    letters += made.gpu != nullptr ? "G" : "";
    letters += made.memory != nullptr ? "M" : "";
    letters += made.mpc != nullptr ? "P" : "";
    letters += made.vpu != nullptr ? "V" : "";
    letters += made.ecc != nullptr ? "E" : "";
    return letters;
  }

  FakePlatform platform_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
  LogCapture log_;
};

TEST_F(DeviceFactoryTest, MakesTheClassOfTheType) {
  for (const DevArch arch : {DevArch::kFen1, DevArch::kFen2, DevArch::kTor1}) {
    EXPECT_NE(std::dynamic_pointer_cast<PhysicalDevice>(make(arch, DevType::kPhysical)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<MpcParentDevice>(make(arch, DevType::kMpcParent)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<MpcInstanceDevice>(make(arch, DevType::kMpcInstance)), nullptr);
  }
  EXPECT_NE(std::dynamic_pointer_cast<PhysicalDevice>(make(DevArch::kWold, DevType::kPhysical)), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GuestDevice>(make(DevArch::kFen1, DevType::kGuest)), nullptr);
  EXPECT_NE(std::dynamic_pointer_cast<GuestDevice>(make(DevArch::kFen2, DevType::kGuest)), nullptr);
}

TEST_F(DeviceFactoryTest, PhysicalDevicesHaveTheFeaturesOfTheirFamily) {
  EXPECT_EQ(features(DevArch::kWold, DevType::kPhysical), "GMV");
  EXPECT_EQ(features(DevArch::kFen1, DevType::kPhysical), "GMPV");
  EXPECT_EQ(features(DevArch::kFen2, DevType::kPhysical), "GMPV");
  EXPECT_EQ(features(DevArch::kTor1, DevType::kPhysical), "GMVE");
}

TEST_F(DeviceFactoryTest, MpcParentsHaveNoVideoEngine) {
  EXPECT_EQ(features(DevArch::kFen1, DevType::kMpcParent), "GMP");
  EXPECT_EQ(features(DevArch::kFen2, DevType::kMpcParent), "GMP");
}

TEST_F(DeviceFactoryTest, MpcInstancesHaveAllThatIsDivided) {
  EXPECT_EQ(features(DevArch::kFen1, DevType::kMpcInstance), "GMPV");
  EXPECT_EQ(features(DevArch::kFen2, DevType::kMpcInstance), "GMPV");
}

TEST_F(DeviceFactoryTest, PartsOfADividedTor1ShowThePartitionAlone) {
  EXPECT_EQ(features(DevArch::kTor1, DevType::kMpcParent), "P");
  EXPECT_EQ(features(DevArch::kTor1, DevType::kMpcInstance), "P");
}

TEST_F(DeviceFactoryTest, GuestsHaveNoMpc) {
  EXPECT_EQ(features(DevArch::kFen1, DevType::kGuest), "GMV");
  EXPECT_EQ(features(DevArch::kFen2, DevType::kGuest), "GMV");
}

TEST_F(DeviceFactoryTest, Tor1HasNoMediatedDevice) {
  const auto device =
      Tor1DeviceFactory().createDevice(makeCuid(DevType::kMediated, DevArch::kTor1), manager_);
  EXPECT_EQ(device.state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Unknown device type :  4 "));
}

TEST_F(DeviceFactoryTest, WoldHasNoMpcParent) {
  const auto device =
      WoldDeviceFactory().createDevice(makeCuid(DevType::kMpcParent, DevArch::kWold), manager_);
  EXPECT_EQ(device.state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Unknown device type :  2 "));
}

TEST_F(DeviceFactoryTest, WoldAndTor1HaveNoGuests) {
  EXPECT_EQ(make(DevArch::kWold, DevType::kGuest), nullptr);
  EXPECT_EQ(make(DevArch::kTor1, DevType::kGuest), nullptr);
  EXPECT_EQ(log_.count("Unknown device type :  5 "), 2U);
}

TEST_F(DeviceFactoryTest, RefusesADeviceOfAnotherFamily) {
  const auto device =
      Tor1DeviceFactory().createDevice(makeCuid(DevType::kPhysical, DevArch::kFen2), manager_);
  EXPECT_EQ(device.state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Device arch mismatch, current :  3 , expected :  4 "));
}

TEST_F(DeviceFactoryTest, RefusesATypeThatNoFamilyHas) {
  for (const FamilyCase& family : families()) {
    for (const auto type : {DevType::kUnknown, static_cast<DevType>(6)}) {
      EXPECT_EQ(family.factory->createDevice(makeCuid(type, family.arch), manager_).state(),
                KelpReturn::kFailure);
    }
  }
}

}  // namespace
}  // namespace kelp
