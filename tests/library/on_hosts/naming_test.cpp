#include "on_hosts/host_fixture.h"

// What devices are called, and which sensor tells their temperature.

namespace {

class FamiliesHost : public tolk_test::HostFixture {};

TEST_F(FamiliesHost, EachFamilyShowsTheSensorOfItsGpu) {
  ASSERT_EQ(count(), 4U);
  EXPECT_EQ(temperature(0), "51");
  EXPECT_EQ(temperature(1), "52");
  EXPECT_EQ(temperature(2), "53");
  EXPECT_EQ(temperature(3), "54");
}

TEST_F(FamiliesHost, AnIdThatNoModelHasGoesByTheCatchAllOfItsFamily) {
  EXPECT_EQ(name(device(0)), "OVT B210");
  EXPECT_EQ(name(device(1)), "OVT B230");
  EXPECT_EQ(name(device(2)), "OVT B240");
  EXPECT_EQ(name(device(3)), "OVT T1");
}

TEST_F(FamiliesHost, OnlyTheNewestFamilyHasEcc) {
  for (const unsigned index : {0U, 1U, 2U}) {
    EXPECT_EQ(eccMode(index), "Not Supported");
  }
  EXPECT_NE(eccMode(3), "Not Supported");
}

class TargetHost : public tolk_test::HostFixture {};

TEST_F(TargetHost, TheEnvironmentNamesItsDevices) {
  ASSERT_EQ(count(), 4U);
  EXPECT_EQ(name(device(0)), "D1000");
  for (const unsigned index : {1U, 2U, 3U}) {
    EXPECT_EQ(name(device(index)), "Not Supported") << "no other family belongs there";
  }
}

class GuestsHost : public tolk_test::HostFixture {};

TEST_F(GuestsHost, TwoGpusWithoutUuidAreTwoDevices) {
  ASSERT_EQ(count(), 2U);
  EXPECT_NE(device(0), device(1));
  for (const unsigned index : {0U, 1U}) {
    EXPECT_EQ(uuid(device(index)), "Unknown Error");
    EXPECT_EQ(name(device(index)), "OV vGPU B240-1e25");
    LumoPciInfo info{};
    EXPECT_EQ(lumoDeviceGetPciInfo(device(index), &info), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(info.bus, 5 + index);
  }
}

}  // namespace
