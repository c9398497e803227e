// The hosts that ship with the simulator hold what they promise.
#include <gtest/gtest.h>

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

TEST(SimShippedHosts, MpcHasAPlainGpuAndAParentWithTwoInstances) {
  const Host host = shipped("mpc");
  ASSERT_EQ(host.functions.size(), 2u);
  EXPECT_EQ(host.functions[0].identity.deviceId, 0x0410);
  EXPECT_EQ(host.functions[1].identity.deviceId, 0x0330);
  EXPECT_EQ(host.functions[1].miscIds, (std::vector<uint32_t>{1, 2, 3}));
  EXPECT_EQ(shipped("mpc-wide").functions[1].miscIds, (std::vector<uint32_t>{1, 2}));
}

}  // namespace
