#include <iterator>

#include "on_hosts/host_fixture.h"

// A virtual machine with two vGPUs.

namespace {

class GuestHost : public tolk_test::HostFixture {};

// What cannot be told apart by a uuid is told apart by where it is.
TEST_F(GuestHost, FindsGpusWithoutUuidByAddress) {
  const struct {
    const char* name;
    const char* address;
  } gpus[] = {{"OV vGPU B240-1e25", "0000:00:05.0"}, {"OV vGPU B230-b", "0000:00:06.0"}};
  ASSERT_EQ(count(), std::size(gpus));
  for (unsigned int i = 0; i < std::size(gpus); ++i) {
    EXPECT_EQ(uuid(device(i)), "Unknown Error");
    EXPECT_EQ(name(device(i)), gpus[i].name);
    LumoDevice* byAddress = nullptr;
    EXPECT_EQ(lumoLibraryInitDeviceByUuid(library_, gpus[i].address, &byAddress), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(byAddress, device(i));
    EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, gpus[i].address, &byAddress), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(byAddress, device(i));
  }
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
