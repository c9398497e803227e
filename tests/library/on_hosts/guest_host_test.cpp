#include "on_hosts/host_fixture.h"

// A virtual machine with one vGPU.

namespace {

class GuestHost : public tolk_test::HostFixture {};

TEST_F(GuestHost, HasOneGpuWithoutUuid) {
  ASSERT_EQ(count(), 1U);
  EXPECT_EQ(uuid(device(0)), "Unknown Error");
  EXPECT_EQ(name(device(0)), "OV vGPU B240-1e25");
  LumoDevice* byAddress = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, "0000:00:05.0", &byAddress), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(byAddress, device(0));
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:00:05.0", &byAddress), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(byAddress, device(0));
}

TEST_F(GuestHost, ShowsWhatAGuestMayKnow) {
  unsigned long long word = 0;
  EXPECT_EQ(lumoDeviceGetProperty(device(0), &word), LUMO_RETURN_SUCCESS);
  EXPECT_EQ((word & LUMO_PROPERTY_ROLE_MASK) >> LUMO_PROPERTY_ROLE_SHIFT, 2U);
  EXPECT_EQ(word & LUMO_PROPERTY_MPC_TYPE_MASK, 0U);
  EXPECT_EQ(utilization(0), "3");
  EXPECT_EQ(totalMib(0), "8192");
  EXPECT_EQ(usedMib(0), "256");
  EXPECT_EQ(linkWidth(0), "16(16)");
  EXPECT_EQ(temperature(0), "Not Supported");
  EXPECT_EQ(eccMode(0), "Not Supported");
  EXPECT_EQ(performanceState(0), "Not Supported");
}

}  // namespace
