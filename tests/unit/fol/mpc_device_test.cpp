#include <gtest/gtest.h>

#include "device_object.h"
#include "fen2/fen2_device_factory.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::FakePlatform;
using tolk_test::LogCapture;
using tolk_test::makeCuid;

class MpcDeviceTest : public testing::Test {
 protected:
  std::shared_ptr<DeviceObj> make(DevType type, std::uint64_t intId) {
    auto device = Fen2DeviceFactory().createDevice(makeCuid(type, DevArch::kFen2, intId), manager_).take();
    EXPECT_TRUE(device->init().ok());
    return device;
  }

  FakePlatform platform_;
  LogCapture log_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
};

TEST_F(MpcDeviceTest, AParentListsItsInstancesByInternalId) {
  platform_.mpciCuids = DevCuidSet{makeCuid(DevType::kMpcInstance, DevArch::kFen2, 10),
                                   makeCuid(DevType::kMpcInstance, DevArch::kFen2, 3)};
  const auto cuids = make(DevType::kMpcParent, 2)->getMpcInstCuids();
  ASSERT_EQ(cuids.value().size(), 2U);
  EXPECT_EQ(cuids.value()[0].intId, 3U);
  EXPECT_EQ(cuids.value()[1].intId, 10U);
}

TEST_F(MpcDeviceTest, AParentWithoutInstancesIsLogged) {
  const auto cuids = make(DevType::kMpcParent, 2)->getMpcInstCuids();
  EXPECT_TRUE(cuids.ok());
  EXPECT_TRUE(cuids.value().empty());
  EXPECT_TRUE(log_.has("0000:41:00.0  has no instance device. It's not an MPC parent device. "));
}

TEST_F(MpcDeviceTest, InstancesThatCannotBeListedKeepTheState) {
  platform_.mpciCuids = KelpReturn::kFailure;
  EXPECT_EQ(make(DevType::kMpcParent, 2)->getMpcInstCuids().state(), KelpReturn::kFailure);
  EXPECT_TRUE(
      log_.has(LogLevel::kError, "Failed to list mpc instance cuids for pcie device :  0000:41:00.0 "));
}

TEST_F(MpcDeviceTest, OnlyAParentHasInstances) {
  EXPECT_EQ(make(DevType::kPhysical, 2)->getMpcInstCuids().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(make(DevType::kMpcInstance, 3)->getMpcInstCuids().state(), KelpReturn::kNotSupported);
}

TEST_F(MpcDeviceTest, AnInstanceFindsItsParentByAddress) {
  DevCuid other = makeCuid(DevType::kPhysical, DevArch::kFen2, 1);
  other.sbdf = 0x420000;
  platform_.pcieCuids = DevCuidSet{other, makeCuid(DevType::kMpcParent, DevArch::kFen2, 2)};
  platform_.answer<QueryMpcParentCmd>(0x410000UL);
  const auto parent = make(DevType::kMpcInstance, 3)->getMpcParentCuid();
  EXPECT_EQ(parent.value().intId, 2U);
}

TEST_F(MpcDeviceTest, AnInstanceWhoseParentIsMissingGivesState7) {
  platform_.answer<QueryMpcParentCmd>(0x420000UL);
  platform_.pcieCuids = DevCuidSet{makeCuid(DevType::kMpcParent, DevArch::kFen2, 2)};
  EXPECT_EQ(make(DevType::kMpcInstance, 3)->getMpcParentCuid().state(), KelpReturn::kNotFound);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Mpc parent not found for :  0000:41:00.0-FEN2-MPCI-int3 "));
}

TEST_F(MpcDeviceTest, AParentThatCannotBeAskedForKeepsTheState) {
  platform_.answer<QueryMpcParentCmd>(KelpReturn::kDeviceLost);
  EXPECT_EQ(make(DevType::kMpcInstance, 3)->getMpcParentCuid().state(), KelpReturn::kDeviceLost);
  platform_.answer<QueryMpcParentCmd>(0x410000UL);
  platform_.pcieCuids = KelpReturn::kReadFailed;
  EXPECT_EQ(make(DevType::kMpcInstance, 3)->getMpcParentCuid().state(), KelpReturn::kReadFailed);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to list pcie device"));
}

TEST_F(MpcDeviceTest, OnlyAnInstanceHasAParent) {
  EXPECT_EQ(make(DevType::kPhysical, 2)->getMpcParentCuid().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(make(DevType::kMpcParent, 2)->getMpcParentCuid().state(), KelpReturn::kNotSupported);
}

}  // namespace
}  // namespace kelp
