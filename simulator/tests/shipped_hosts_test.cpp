// The hosts that ship with the simulator hold what they promise.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "host_document.h"
#include "host_reader.h"

namespace {

Host shipped(const std::string& name) {
  return readHost(HostLibrary({SIM_HOSTS}).load(name));
}

TEST(SimShippedHosts, AllAreValidAndDescribed) {
  const HostLibrary library({SIM_HOSTS});
  EXPECT_GE(library.names().size(), 15u);
  for (const std::string& name : library.names()) {
    EXPECT_NO_THROW(shipped(name)) << name;
    EXPECT_TRUE(library.load(name).json.contains("description")) << name;
  }
}

TEST(SimShippedHosts, OneOfEachFamily) {
  EXPECT_EQ(shipped("wold").functions.at(0).identity.deviceId >> 8, 1);
  EXPECT_EQ(shipped("fen1").functions.at(0).identity.deviceId >> 8, 2);
  EXPECT_EQ(shipped("fen2").functions.at(0).identity.deviceId >> 8, 3);
  EXPECT_EQ(shipped("tor1").functions.at(0).identity.deviceId >> 8, 4);
}

TEST(SimShippedHosts, SizesAndKinds) {
  EXPECT_EQ(shipped("none").functions.size(), 0u);
  EXPECT_FALSE(shipped("none").loaded);
  EXPECT_FALSE(shipped("unloaded").nodes.empty());
  EXPECT_FALSE(shipped("unloaded").loaded);
  EXPECT_EQ(shipped("server").functions.size(), 8u);
  EXPECT_EQ(shipped("server").functions.back().place.numaNode, 1);
  EXPECT_EQ(shipped("rack").functions.size(), 64u);
  EXPECT_EQ(shipped("ancient").protocol, SIM_PROTOCOL_NONE);
  EXPECT_EQ(shipped("legacy").protocol, SIM_PROTOCOL_0);
  EXPECT_GE(shipped("future").currentMinor, 2);
  EXPECT_EQ(shipped("guest").driverMode, "1");
  EXPECT_EQ(shipped("guest").functions.at(0).subsystemDeviceId, 0x1e25);
  EXPECT_FALSE(shipped("broken").faults.empty());
}

// What an interface is listed as; nothing when it is not.
std::optional<std::pair<int, int>> listedAs(const Host& host, uint32_t name) {
  for (const auto* const list : {&host.listed, &host.renderListed}) {
    for (const ListedInterface& one : *list) {
      if (one.name == name) return std::pair<int, int>(one.minVersion, one.maxVersion);
    }
  }
  return std::nullopt;
}

TEST(SimShippedHosts, OlderDriversOfEachFamily) {
  const struct {
    const char* name;
    Family family;
    int status;
    int processes;
    int states;
  } hosts[] = {{"legacy", Family::kFen1, 1, 2, 3},
               {"legacy-wold", Family::kWold, 0, 0, 0},
               {"legacy-fen1", Family::kFen1, 1, 1, 1},
               {"legacy-fen2", Family::kFen2, 1, 2, 2},
               {"legacy-tor1", Family::kTor1, 1, 2, 3}};
  for (const auto& one : hosts) {
    const Host host = shipped(one.name);
    EXPECT_EQ(host.protocol, SIM_PROTOCOL_0) << one.name;
    EXPECT_EQ(host.functions.at(0).family, one.family) << one.name;
    EXPECT_EQ(listedAs(host, 2), std::pair(one.status, one.status)) << one.name;
    EXPECT_EQ(listedAs(host, 4), std::pair(one.processes, one.processes)) << one.name;
    EXPECT_EQ(listedAs(host, 100002), std::pair(one.states, one.states)) << one.name;
    for (const uint32_t name : {51, 52, 53, 54, 55, 56, 57, 60, 61, 62, 63, 64, 65, 66}) {
      EXPECT_EQ(listedAs(host, name), std::pair(0, 0)) << one.name << " " << name;
    }
    EXPECT_FALSE(listedAs(host, 0)) << one.name;
    EXPECT_FALSE(listedAs(host, 67)) << one.name;
  }
}

TEST(SimShippedHosts, DriversThatLackSomething) {
  EXPECT_EQ(shipped("future-interface").protocol, SIM_PROTOCOL_1);
  EXPECT_EQ(listedAs(shipped("future-interface"), 8), std::pair(3, 5));
  EXPECT_EQ(listedAs(shipped("future-interface"), 2), std::pair(3, 3));
  EXPECT_TRUE(listedAs(shipped("partial"), 56));
  EXPECT_FALSE(listedAs(shipped("partial"), 57));
  EXPECT_EQ(shipped("busy-firmware").busyAttempts, 9u);
  EXPECT_FALSE(shipped("busy-firmware").busyAgain);
  EXPECT_EQ(shipped("legacy").busyAttempts, 0u);
}

TEST(SimShippedHosts, ServerHasATopologyToBeShown) {
  const Host host = shipped("server");
  EXPECT_EQ(host.functions[0].place.upstream.size(), 4u);
  EXPECT_GE(host.functions[2].place.upstream.size(), 6u) << "two levels of switches";
  ASSERT_EQ(host.adapters.size(), 3u);
  std::vector<std::pair<std::string, std::string>> byAddress;
  for (const Adapter& adapter : host.adapters) byAddress.emplace_back(adapter.place.address, *adapter.name);
  std::sort(byAddress.begin(), byAddress.end());
  const auto byName = [](const auto& a, const auto& b) { return a.second < b.second; };
  EXPECT_FALSE(std::is_sorted(byAddress.begin(), byAddress.end(), byName)) << "names go otherwise than buses";
}

TEST(SimShippedHosts, VirtualisationHosts) {
  const Host host = shipped("vgpu-host");
  EXPECT_EQ(host.driverMode, "0");
  EXPECT_EQ(host.functions[0].vgpuTypes->size() + host.functions[1].vgpuTypes->size(), 3u);
  EXPECT_EQ(host.functions[0].vgpus.size() + host.functions[1].vgpus.size(), 5u);
  const Host small = shipped("vgpu");
  EXPECT_EQ(small.functions[0].vgpus.at(0).uuid, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71");
  EXPECT_EQ(*shipped("guest").functions[0].guestInfo, "type_id=7717,name=OVT B240-8Q,framebuffer=8192");
  EXPECT_EQ(shipped("guest").functions.size(), 2u);
  EXPECT_FALSE(shipped("bare").functions[0].vgpuTypes);
}

TEST(SimShippedHosts, ContainerHasSomeNodesAndPidsOfItsOwn) {
  const Host host = shipped("container");
  EXPECT_TRUE(host.files.contains("/dev/ovgpu.1"));
  EXPECT_FALSE(host.files.contains("/dev/ovgpu.0"));
  for (const uint64_t pid : {17, 23}) EXPECT_TRUE(host.processes.contains(pid)) << pid;
}

TEST(SimShippedHosts, SriovHasFunctionsOfOneGpu) {
  const Host host = shipped("sriov");
  std::vector<bool> virtualFunctions;
  for (const PciFunction& function : host.functions) virtualFunctions.push_back(function.isVirtualFunction);
  EXPECT_EQ(virtualFunctions, (std::vector<bool>{false, true, true, false}));
}

TEST(SimShippedHosts, MpcHasAPlainGpuAndAParentWithTwoInstances) {
  const Host host = shipped("mpc");
  ASSERT_EQ(host.functions.size(), 2u);
  EXPECT_EQ(host.functions[0].identity.deviceId, 0x0410);
  EXPECT_EQ(host.functions[1].identity.deviceId, 0x0330);
  EXPECT_EQ(host.functions[1].miscIds, (std::vector<uint32_t>{1, 2, 3}));
  EXPECT_EQ(shipped("mpc-wide").functions[1].miscIds, (std::vector<uint32_t>{1, 2}));
}

}  // namespace
