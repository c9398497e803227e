#include "on_hosts/host_fixture.h"

// A bare host with a plain GPU and one that is divided into two MPC instances.

namespace {

class MpcHost : public tolk_test::HostFixture {};

constexpr const char* kNotSupported = "Not Supported";

TEST_F(MpcHost, CountsInstancesAsDevices) {
  ASSERT_EQ(count(), 4U);
  EXPECT_EQ(uuid(device(0)), "00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(uuid(device(1)), "69a595f8-b61c-1978-3817-019f596bec2d");
  EXPECT_EQ(uuid(device(2)), "39396984-de14-b1aa-005d-f1475ce9edee");
  EXPECT_EQ(uuid(device(3)), "8abaa4c8-e8f3-b8b8-1a4c-1f45eed06dc2");
  for (const unsigned index : {1U, 2U, 3U}) {
    EXPECT_EQ(name(device(index)), "OVT B240");
    unsigned own = 9;
    EXPECT_EQ(lumoDeviceGetIndex(device(index), &own), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(own, index);
  }
}

TEST_F(MpcHost, SaysWhoIsParentAndWhoIsInstance) {
  const auto word = [this](unsigned index) {
    unsigned long long value = 0;
    EXPECT_EQ(lumoDeviceGetProperty(device(index), &value), LUMO_RETURN_SUCCESS);
    return value & (LUMO_PROPERTY_MPC_CAPABLE | LUMO_PROPERTY_MPC_TYPE_MASK | LUMO_PROPERTY_ROLE_MASK);
  };
  EXPECT_EQ(word(0), 0U);
  EXPECT_EQ(word(1), LUMO_PROPERTY_MPC_CAPABLE | 1U << LUMO_PROPERTY_MPC_TYPE_SHIFT);
  EXPECT_EQ(word(2), LUMO_PROPERTY_MPC_CAPABLE | 2U << LUMO_PROPERTY_MPC_TYPE_SHIFT);
  EXPECT_EQ(word(3), LUMO_PROPERTY_MPC_CAPABLE | 2U << LUMO_PROPERTY_MPC_TYPE_SHIFT);
}

TEST_F(MpcHost, LinksParentAndInstances) {
  unsigned number = 0;
  ASSERT_EQ(lumoDeviceCountMpcInstances(device(1), &number), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(number, 2U);
  LumoDevice* instances[2] = {};
  EXPECT_EQ(lumoDeviceGetMpcInstances(device(1), instances, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetMpcInstances(device(1), instances, 2), LUMO_RETURN_SUCCESS);
  for (const unsigned i : {0U, 1U}) {
    EXPECT_EQ(instances[i], device(2 + i));
    LumoDevice* parent = nullptr;
    EXPECT_EQ(lumoDeviceGetMpcParentDevice(instances[i], &parent), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(parent, device(1));
    unsigned index = 9;
    EXPECT_EQ(lumoDeviceGetMpcInstanceIndex(instances[i], &index), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(index, i);
    LumoMpcProfile profile;
    ASSERT_EQ(lumoDeviceGetMpcProfileInfo(instances[i], &profile), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(profile.id, 3U);
    EXPECT_STREQ(profile.name, "1c.16g");
    EXPECT_EQ(profile.coreCount, 1U);
    EXPECT_EQ(profile.memory, 16384U);
  }
  EXPECT_EQ(lumoDeviceCountMpcInstances(device(2), &number), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(MpcHost, ShowsTheNumbersOfParentAndInstances) {
  EXPECT_EQ(utilization(1), kNotSupported) << "the driver has no such number for a parent";
  EXPECT_EQ(utilization(2), "7");
  EXPECT_EQ(utilization(3), "0");
  EXPECT_EQ(temperature(1), kNotSupported);
  EXPECT_EQ(temperature(2), "41");
  EXPECT_EQ(temperature(3), "41");
  EXPECT_EQ(totalMib(1), "49152");
  EXPECT_EQ(totalMib(2), "16384");
  EXPECT_EQ(usedMib(1), "2");
  EXPECT_EQ(usedMib(2), "640");
  EXPECT_EQ(usedMib(3), "1");
  for (const unsigned index : {1U, 2U, 3U}) {
    EXPECT_EQ(linkWidth(index), "16(16)");
    EXPECT_EQ(eccMode(index), kNotSupported);
    EXPECT_EQ(performanceState(index), kNotSupported);
  }
  EXPECT_EQ(processCount(2), "0");
}

}  // namespace
