#include <set>

#include "on_hosts/values_fixture.h"

// How far devices are apart, and which CPUs are near, against the description of the host.

namespace {

using tolk_test::ask;
using tolk_test::askDevicesAtLevel;
using tolk_test::askText;
using tolk_test::ValuesFixture;

class TopologyHost : public ValuesFixture {
 protected:
  TopologyHost() : ValuesFixture("topology") {}
  std::string level(unsigned a, unsigned b) { return ask(of(a), lumoDeviceGetTopologyLevel, device(b)); }
  /// Between two functions by their addresses, asked of a third.
  std::string between(const std::string& a, const std::string& b) {
    return ask(of(2), lumoDeviceGetPciDeviceTopology, a.c_str(), b.c_str());
  }
};

struct Pair {
  unsigned a;
  unsigned b;
  int level;
};
constexpr Pair kPairs[] = {
    {0, 0, LUMO_TOPOLOGY_SAME},        {0, 1, LUMO_TOPOLOGY_MULTIPLE_BRIDGES},
    {0, 2, LUMO_TOPOLOGY_HOST_BRIDGE}, {0, 3, LUMO_TOPOLOGY_NODE},
    {2, 3, LUMO_TOPOLOGY_NODE},        {0, 4, LUMO_TOPOLOGY_SYSTEM},
    {4, 5, LUMO_TOPOLOGY_INTERNAL},    {3, 5, LUMO_TOPOLOGY_SYSTEM},
    {5, 6, LUMO_TOPOLOGY_SYSTEM},
};

TEST_F(TopologyHost, LevelsFollowTheTree) {
  ASSERT_EQ(count(), 7U);
  for (const Pair& pair : kPairs) {
    EXPECT_EQ(level(pair.a, pair.b), std::to_string(pair.level)) << pair.a << " and " << pair.b;
    EXPECT_EQ(level(pair.b, pair.a), std::to_string(pair.level)) << pair.b << " and " << pair.a;
    if (pair.a != pair.b) {
      EXPECT_EQ(between(told(pair.a, "address"), told(pair.b, "address")), std::to_string(pair.level));
    }
  }
}

TEST_F(TopologyHost, AdaptersStandInTheSameTree) {
  const std::string first = file_.text("/adapters/0/address");
  const std::string second = file_.text("/adapters/1/address");
  EXPECT_EQ(between(told(0, "address"), first), std::to_string(LUMO_TOPOLOGY_SINGLE_BRIDGE));
  EXPECT_EQ(between(told(1, "address"), first), std::to_string(LUMO_TOPOLOGY_MULTIPLE_BRIDGES));
  EXPECT_EQ(between(first, second), std::to_string(LUMO_TOPOLOGY_SYSTEM));
  EXPECT_EQ(between(first, file_.text("/adapters/2/address")), "refused 4") << "neither GPU nor adapter";
  EXPECT_EQ(between(first, "0000:ee:00.0"), "refused 999") << "no such function";
  EXPECT_EQ(ask(of(0), lumoDeviceCountPciNicDevices), "2") << "those of InfiniBand";
  char sbdfs[3][LUMO_PCI_SBDF_SIZE];
  ASSERT_EQ(lumoDeviceGetPciNicDeviceSbdf(device(0), sbdfs[0], LUMO_PCI_SBDF_SIZE, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ((std::set<std::string>{sbdfs[0], sbdfs[1]}), (std::set{first, second}));
  EXPECT_STREQ(sbdfs[2], "");
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(device(0), sbdfs[0], LUMO_PCI_SBDF_SIZE, 1), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(device(0), sbdfs[0], 12, 1), LUMO_RETURN_INSUFFICIENT_SIZE)
      << "that a text does not fit comes first";
}

TEST_F(TopologyHost, DevicesAreListedByLevel) {
  const auto miscs = [this](std::initializer_list<unsigned> devices) {
    std::string joined;
    for (const unsigned index : devices) {
      joined += (joined.empty() ? "" : "; ") + ask(of(index), lumoDeviceGetIntId);
    }
    return joined;
  };
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_INTERNAL), "empty");
  EXPECT_EQ(askDevicesAtLevel(of(4), LUMO_TOPOLOGY_INTERNAL), miscs({5}));
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_SINGLE_BRIDGE), "empty");
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_MULTIPLE_BRIDGES), miscs({1}));
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_HOST_BRIDGE), miscs({2}));
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_NODE), miscs({3}));
  EXPECT_EQ(askDevicesAtLevel(of(0), LUMO_TOPOLOGY_SYSTEM), miscs({4, 5, 6}));
  unsigned number = 0;
  EXPECT_EQ(lumoDeviceCountDeviceByTopologyLevel(device(0), LUMO_TOPOLOGY_SYSTEM, &number),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number, 3U);
}

TEST_F(TopologyHost, NearCpusAreTextAndMask) {
  for (const unsigned index : {0U, 2U}) {
    EXPECT_EQ(askText(of(index), lumoDeviceGetCpuAffinityStringWithinNode), told(index, "cpus"));
  }
  unsigned long long mask[3] = {};
  ASSERT_EQ(lumoDeviceGetCpuAffinityWithinNode(device(0), mask, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 0x10FU) << told(0, "cpus");
  EXPECT_EQ(lumoDeviceGetCpuAffinityWithinNode(device(2), mask, 2), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetCpuAffinityWithinNode(device(2), mask, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 1ULL << 63) << told(2, "cpus");
  EXPECT_EQ(mask[1], 1ULL << 0);
  EXPECT_EQ(mask[2], 7ULL << 2);
  ASSERT_EQ(lumoDeviceGetCpuAffinityBitmaskWithinNode(device(0), mask, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 0x10FU) << told(0, "cpus");
}

TEST_F(TopologyHost, NearMemoryIsTextAndMask) {
  unsigned long long mask = 99;
  for (const unsigned index : {0U, 4U}) {
    EXPECT_EQ(askText(of(index), lumoDeviceGetMemoryAffinityStringWithinNode), told(index, "numa_node"));
    ASSERT_EQ(lumoDeviceGetMemoryAffinityWithinNode(device(index), &mask, 1), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(mask, 1ULL << number(index, "numa_node"));
  }
  EXPECT_EQ(askText(of(6), lumoDeviceGetMemoryAffinityStringWithinNode), told(6, "numa_node"));
  EXPECT_EQ(lumoDeviceGetMemoryAffinityWithinNode(device(6), &mask, 1), LUMO_RETURN_UNKNOWN_ERROR);
}

}  // namespace
