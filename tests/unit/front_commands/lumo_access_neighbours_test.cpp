#include <functional>
#include <memory>
#include <utility>

#include "lumo_access_fixture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tolk_test::device;
using tolk_test::fakeLumo;

/// How devices stand to each other: topology, Sablink, MPC parents.
class LumoAccessNeighboursTest : public LumoAccessTest {
 protected:
  using Texts = std::vector<std::string>;

  template <class Run>
  static Texts levels(const char* function, Run run) {
    Texts found;
    for (int level = LUMO_TOPOLOGY_SAME; level <= 6; ++level) {
      fakeLumo().set(function, level);
      std::string text = "before";
      const LumoReturn ret = run(text);
      found.push_back(ret == LUMO_RETURN_SUCCESS ? text : text + " " + std::to_string(ret));
    }
    return found;
  }

  static LumoSablinkPath way(const std::vector<LumoDevice*>& devices, unsigned count) {
    LumoSablinkPath made{};
    made.deviceCount = count;
    std::ranges::copy(devices, made.devices);
    return made;
  }
};

TEST_F(LumoAccessNeighboursTest, LevelsBetweenDevicesAndBetweenAddressesDifferInOneText) {
  EXPECT_THAT(
      levels("lumoDeviceGetTopologyLevel", [&](auto& text) { return device_.getTopologyLevel(peer_, text); }),
      ElementsAre("before 999", "INT", "SPS", "MPB", "HPB", "NODE", "SYS", "before 999"));
  EXPECT_THAT(levels("lumoDeviceGetPciDeviceTopology",
                     [&](auto& text) { return device_.getTopologyLevel("a", "b", text); }),
              ElementsAre("before 999", "INT", "SPB", "MPB", "HPB", "NODE", "SYS", "before 999"));
}

TEST_F(LumoAccessNeighboursTest, LevelWithoutATextIsLogged) {
  fakeLumo().set("lumoDeviceGetTopologyLevel", -1);
  std::string text;
  device_.getTopologyLevel(peer_, text);
  EXPECT_THAT(log_.lines, ElementsAre("E toLevelText >> no text for topology level  -1 "));
}

TEST_F(LumoAccessNeighboursTest, LevelIsAskedOfBothEnds) {
  const std::string devices = "lumoDeviceGetTopologyLevel(device 0, device 1)";
  fakeLumo().set(devices, 5);
  expectOutput<std::string>("getTopologyLevel", devices, "before", "SYS",
                            [&](auto& text) { return device_.getTopologyLevel(peer_, text); });
  const std::string addresses =
      R"(lumoDeviceGetPciDeviceTopology(device 0, "00000000:01:00.0", "0000:03:00.0"))";
  fakeLumo().set(addresses, 4);
  expectOutput<std::string>("getTopologyLevel", addresses, "before", "NODE", [&](auto& text) {
    return device_.getTopologyLevel("00000000:01:00.0", "0000:03:00.0", text);
  });
}

TEST_F(LumoAccessNeighboursTest, PeerToPeerStatusHasAWord) {
  const char* const call = "lumoDeviceGetP2PStatus(device 0, device 1, 1)";
  const std::pair<unsigned, std::string> expected[] = {
      {0, "OK"}, {1, "CNS"}, {2, "GNS"}, {3, "U"}, {4294967295, "U"}};
  for (const auto& [status, word] : expected) {
    fakeLumo().set(call, status);
    expectOutput<std::string>("getP2pStatus", call, "before", word,
                              [&](auto& text) { return device_.getP2pStatus(peer_, 1, text); });
  }
}

TEST_F(LumoAccessNeighboursTest, EachAffinityTextThatCanBeHadIsWritten) {
  const std::string memoryCall = "lumoDeviceGetMemoryAffinityStringWithinNode(device 0, 256)";
  const std::string cpuCall = "lumoDeviceGetCpuAffinityStringWithinNode(device 0, 256)";
  fakeLumo().set(memoryCall, std::string("0"));
  fakeLumo().set(cpuCall, std::string("0-15,32-47"));
  std::string memory = "N/A";
  std::string cpus = "N/A";
  EXPECT_EQ(device_.getAffinityString(memory, cpus), 0);
  EXPECT_EQ(memory, "0");
  EXPECT_EQ(cpus, "0-15,32-47");
  EXPECT_THAT(fakeLumo().lines, ElementsAre(memoryCall, cpuCall));

  memory = cpus = "N/A";
  fakeLumo().fail(memoryCall, {LUMO_RETURN_NOT_FOUND});
  EXPECT_EQ(device_.getAffinityString(memory, cpus), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(memory, "N/A");
  EXPECT_EQ(cpus, "0-15,32-47");

  memory = cpus = "N/A";
  expectFailure("getAffinityString", cpuCall, [&] { return device_.getAffinityString(memory, cpus); });
  EXPECT_EQ(memory, "0");
  EXPECT_EQ(cpus, "N/A");
}

TEST_F(LumoAccessNeighboursTest, NearestGpusAreListedWithRoomForOneMore) {
  const std::string count = "lumoDeviceCountDeviceByTopologyLevel(device 0, 3)";
  const std::string list = "lumoDeviceGetDeviceByTopologyLevel(device 0, 3, 3)";
  fakeLumo().setList(count, list, std::vector{device(4), device(2)});
  std::vector<std::shared_ptr<LumoAccessDevice>> devices;
  EXPECT_EQ(device_.getNearestGpus(3, devices), 0);
  EXPECT_THAT(fakeLumo().lines, ElementsAre(count, list));
  ASSERT_EQ(devices.size(), 2u);
  std::string uuid;
  EXPECT_EQ(devices[0]->devGetUUID(uuid), 0);
  EXPECT_EQ(devices[1]->devGetUUID(uuid), 0);
  EXPECT_EQ(fakeLumo().lines[2], "lumoDeviceGetUUID(device 4, 48)");
  EXPECT_EQ(fakeLumo().lines[3], "lumoDeviceGetUUID(device 2, 48)");

  for (const auto& call : {count, list}) {
    expectFailure("getNearestGpus", call, [&] { return device_.getNearestGpus(3, devices); });
    EXPECT_EQ(devices.size(), 2u);
  }
}

TEST_F(LumoAccessNeighboursTest, NoGpusAtALevelMakeNoListCall) {
  std::vector<std::shared_ptr<LumoAccessDevice>> devices(1);
  EXPECT_EQ(device_.getNearestGpus(0, devices), 0);
  EXPECT_THAT(devices, IsEmpty());
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountDeviceByTopologyLevel"));
}

TEST_F(LumoAccessNeighboursTest, DirectLinksAreCountedBehindOv) {
  const std::string call = "lumoDeviceCountSablinkLayouts(device 0, device 1)";
  fakeLumo().set(call, 4u);
  expectOutput<std::string>("getDeviceSablinkLayout", call, "before", "OV4",
                            [&](auto& text) { return device_.getDeviceSablinkLayout(peer_, text); });
  std::string text = "before";
  EXPECT_EQ(device_.getDeviceSablinkLayout(peer_, text), 0);
  EXPECT_EQ(text, "");
}

TEST_F(LumoAccessNeighboursTest, PathIsMadeOfHopsWithTheirPorts) {
  fakeLumo().setList("lumoDeviceCountSablinkShortestPaths(device 0, device 1)",
                     "lumoDeviceGetSablinkShortestPaths(device 0, device 1, 1)",
                     std::vector{way({device(0), device(7), device(1)}, 3)});
  fakeLumo().set("lumoDeviceGetIndex(device 0)", 0u);
  fakeLumo().set("lumoDeviceGetIndex(device 7)", 2u);
  fakeLumo().set("lumoDeviceGetIndex(device 1)", 1u);
  fakeLumo().setList("lumoDeviceCountSablinkLayouts(device 0, device 7)",
                     "lumoDeviceGetSablinkLayouts(device 0, device 7, 2)",
                     std::vector{LumoSablinkLayout{0, 3}, LumoSablinkLayout{1, 2}});
  fakeLumo().setList("lumoDeviceCountSablinkLayouts(device 7, device 1)",
                     "lumoDeviceGetSablinkLayouts(device 7, device 1, 1)",
                     std::vector{LumoSablinkLayout{5, 4}});
  std::vector<SablinkPath> paths;
  EXPECT_EQ(device_.getSablinkLayout(peer_, paths), 0);
  ASSERT_EQ(paths.size(), 1u);
  ASSERT_EQ(paths[0].size(), 2u);
  EXPECT_EQ(paths[0][0].localIndex, 0u);
  EXPECT_EQ(paths[0][0].remoteIndex, 2u);
  ASSERT_EQ(paths[0][0].ports.size(), 2u);
  EXPECT_EQ(paths[0][0].ports[1].localPort, 1u);
  EXPECT_EQ(paths[0][0].ports[1].remotePort, 2u);
  EXPECT_EQ(paths[0][1].localIndex, 2u);
  EXPECT_EQ(paths[0][1].remoteIndex, 1u);
  ASSERT_EQ(paths[0][1].ports.size(), 1u);
  EXPECT_EQ(paths[0][1].ports[0].localPort, 5u);

  const auto calls = fakeLumo().lines;
  EXPECT_EQ(calls.size(), 9u);
  for (const auto& call : calls) {
    std::vector<SablinkPath> kept(5);
    expectFailure("getSablinkLayout", call, [&] { return device_.getSablinkLayout(peer_, kept); });
    EXPECT_EQ(kept.size(), 5u);
  }
}

TEST_F(LumoAccessNeighboursTest, DevicesWithoutAPathMakeNoListCall) {
  std::vector<SablinkPath> paths(1);
  EXPECT_EQ(device_.getSablinkLayout(peer_, paths), 0);
  EXPECT_THAT(paths, IsEmpty());
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoDeviceCountSablinkShortestPaths"));
}

TEST_F(LumoAccessNeighboursTest, PathIsNoLongerThanItsRecord) {
  fakeLumo().setList("lumoDeviceCountSablinkShortestPaths", "lumoDeviceGetSablinkShortestPaths",
                     std::vector{way(std::vector(LUMO_SABLINK_PATH_SIZE, device(0)), 4294967295)});
  std::vector<SablinkPath> paths;
  EXPECT_EQ(device_.getSablinkLayout(peer_, paths), 0);
  ASSERT_EQ(paths.size(), 1u);
  EXPECT_EQ(paths[0].size(), LUMO_SABLINK_PATH_SIZE - 1u);
}

TEST_F(LumoAccessNeighboursTest, PathsThatWentAwayAreLeftOut) {
  fakeLumo().set("lumoDeviceCountSablinkShortestPaths", 3u);
  fakeLumo().set("lumoDeviceGetSablinkShortestPaths", std::vector{way({device(0), device(1)}, 2)});
  std::vector<SablinkPath> paths;
  EXPECT_EQ(device_.getSablinkLayout(peer_, paths), 0);
  EXPECT_EQ(paths.size(), 1u);
}

TEST_F(LumoAccessNeighboursTest, NeighbourIsKnownByItsIndex) {
  struct Case {
    const char* method;
    std::string neighbour;
    std::function<LumoReturn(std::uint32_t&)> run;
  };
  const Case cases[] = {
      {"getSablinkRemoteDevice", "lumoDeviceGetSablinkRemoteDevice(device 0, 3)",
       [&](std::uint32_t& index) { return device_.getSablinkRemoteDevice(3, index); }},
      {"getParentDeviceIndex", "lumoDeviceGetMpcParentDevice(device 0)",
       [&](std::uint32_t& index) { return device_.getParentDeviceIndex(index); }},
  };
  for (const auto& [method, neighbour, run] : cases) {
    const std::string indexCall = "lumoDeviceGetIndex(device 6)";
    fakeLumo().set(neighbour, device(6));
    fakeLumo().set(indexCall, 2u);
    std::uint32_t index = 9;
    EXPECT_EQ(run(index), 0) << method;
    EXPECT_EQ(index, 2u) << method;
    EXPECT_THAT(fakeLumo().lines, ElementsAre(neighbour, indexCall));
    index = 9;
    expectFailure(method, neighbour, [&, &get = run] { return get(index); });
    expectFailure(method, indexCall, [&, &get = run] { return get(index); });
    EXPECT_EQ(index, 9u) << method;
    reset();
  }
}

}  // namespace
}  // namespace tolk
