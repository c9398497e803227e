#include <gtest/gtest.h>

#include "device_object.h"
#include "fen1/fen1_device_factory.h"
#include "support/fake_platform.h"
#include "support/log_capture.h"

// A guest's name out of a PCI record that is there in part.

namespace kelp {
namespace {

class GuestNameFailureTest : public testing::Test {
 protected:
  Stated<std::string> nameOf(const PcieInfo& pcie) {
    platform_.answer<QueryPcieInfoCmd>(pcie);
    const auto guest = Fen1DeviceFactory()
                           .createDevice(tolk_test::makeCuid(DevType::kGuest, DevArch::kFen1), manager_)
                           .take();
    EXPECT_TRUE(guest->init().ok());
    return guest->getDeviceName();
  }

  tolk_test::FakePlatform platform_;
  const tolk_test::LogCapture log_;
  std::shared_ptr<ModelManager> manager_ = std::make_shared<ModelManager>();
};

TEST_F(GuestNameFailureTest, WithoutVgpuTypeThereIsNoName) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT B230E"));
  PcieInfo pcie;
  pcie.deviceId = 0x0240U;
  pcie.subsystemDeviceId = KelpReturn::kReadFailed;
  EXPECT_EQ(nameOf(pcie).state(), KelpReturn::kReadFailed);
}

TEST_F(GuestNameFailureTest, TheDeviceIdMattersOnlyToTheList) {
  PcieInfo pcie;
  pcie.deviceId = KelpReturn::kDeviceLost;
  pcie.subsystemDeviceId = 0x1E25U;
  EXPECT_EQ(nameOf(pcie).state(), KelpReturn::kDeviceLost);
  platform_.answer<QueryDevNameCmd>(std::string("OVT B230E"));
  EXPECT_EQ(nameOf(pcie).value(), "OV vGPU B230E-1e25");
}

TEST_F(GuestNameFailureTest, TheVgpuTypeIsInLowerCase) {
  platform_.answer<QueryDevNameCmd>(std::string("OVT B"));
  PcieInfo pcie;
  pcie.subsystemDeviceId = 0xABCDU;
  EXPECT_EQ(nameOf(pcie).value(), "OV vGPU B-abcd");
}

}  // namespace
}  // namespace kelp
