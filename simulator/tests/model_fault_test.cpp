#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

const char* const kTwoGpus =
    R"({"gpus": [{"model": "B250A", "values": {"utilization": 12}}, {"model": "B250A"}]})";

int temperature(TestDriver& driver, const std::string& node) {
  Record payload = Record(24).put(0, 4, 1000);
  return driver.call(node, 56, 1, payload);
}

TEST(SimFaults, OnlyTheNthIoctl) {
  TestDriver driver(kTwoGpus, {"ioctl#3:errno=EIO"});
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
  EXPECT_EQ(temperature(driver, "ovgpu.1"), 0);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), -EIO);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
}

TEST(SimFaults, FromTheNthOnAndARange) {
  TestDriver driver(kTwoGpus, {"ioctl(node=ovgpu.0)#2+:errno=EIO", "ioctl(node=ovgpu.1)#1-2:errno=EBUSY"});
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), -EIO);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), -EIO);
  EXPECT_EQ(temperature(driver, "ovgpu.1"), -EBUSY);
  EXPECT_EQ(temperature(driver, "ovgpu.1"), -EBUSY);
  EXPECT_EQ(temperature(driver, "ovgpu.1"), 0);
}

TEST(SimFaults, StatusOfOneInterfaceOfOneDevice) {
  TestDriver driver(kTwoGpus, {"ioctl(interface=56,node=ovgpu.1):status=11"});
  Record payload(0);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
  EXPECT_EQ(temperature(driver, "ovgpu.1"), 11);
  EXPECT_EQ(driver.call("ovgpu.1", 67, 0, 20, payload), 0);
}

TEST(SimFaults, KindsOfCalls) {
  TestDriver driver(kTwoGpus, {"ioctl(kind=probe):errno=ENOTTY", "ioctl(kind=scan):count=200",
                               "ioctl(kind=list):status=8", "ioctl(request=0xC0044D77):errno=EPERM"});
  Record probe(12);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC00C4DAE, probe), ENOTTY);
  Record scan = Record(48).put(12, 4, 24);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0xC0084DAF, scan), 0);
  EXPECT_EQ(scan.get(24, 2), 200u);
  Record list = Record(48).put(8, 4, 1).put(12, 4, 24).put(24, 2, 1);
  ASSERT_EQ(driver.ioctl("ovgpu.0", 0xC0084DAF, list), 0);
  EXPECT_EQ(list.get(4, 4), 8u);
  Record nothing(0);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0044D77, nothing), EPERM);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
}

TEST(SimFaults, ReplyOfOnesKeepsTheHeader) {
  TestDriver driver(kTwoGpus, {"ioctl(interface=2):ones"});
  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.0", 2, 3, 92, payload), 0);
  for (size_t i = 0; i < 92; ++i) EXPECT_EQ(payload.get(i, 1), 0xFFu);
}

TEST(SimFaults, ShortReplyLeavesTheRestAsSent) {
  TestDriver driver(kTwoGpus, {"ioctl(interface=2):short=2"});
  Record payload(92, 0x55);
  EXPECT_EQ(driver.call("ovgpu.0", 2, 3, payload), 0);
  EXPECT_EQ(payload.get(0, 4), 0x5555000Cu);
}

TEST(SimFaults, LyingCount) {
  TestDriver driver(kTwoGpus, {"ioctl(interface=4):count=500"});
  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.0", 4, 3, 7384, payload), 0);
  EXPECT_EQ(payload.get(0, 4), 500u);
}

TEST(SimFaults, HangIsHandedToTheShell) {
  TestDriver driver(kTwoGpus, {"ioctl(interface=56)#2:hang=250"});
  temperature(driver, "ovgpu.0");
  EXPECT_EQ(driver.last().hangMs, 0u);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
  EXPECT_EQ(driver.last().hangMs, 250u);
}

TEST(SimFaults, DeviceVanishesForGoodAndAlone) {
  TestDriver driver(kTwoGpus, {"ioctl(node=ovgpu.0)#2:gone"});
  EXPECT_EQ(temperature(driver, "ovgpu.0"), 0);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), -ENODEV);
  EXPECT_EQ(temperature(driver, "ovgpu.0"), -ENODEV);
  Record probe(16);
  EXPECT_EQ(driver.ioctl("renderD128", 0xC010648B, probe), ENODEV) << "the render node of that device too";
  EXPECT_EQ(temperature(driver, "ovgpu.1"), 0);
}

TEST(SimFaults, ProtocolZeroAndRenderInterfacesAreNamedAlike) {
  TestDriver driver(R"({"protocol": 0, "gpus": [{"model": "B230"}]})",
                    {"ioctl(interface=2,version=1):errno=EIO", "ioctl(interface=100004):errno=EAGAIN"});
  Record status(88);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0584D05, status), EIO);
  Record reply(132);
  Record record = Record(40).put(0, 4, 4).put(4, 4, 132);
  record.put(8, 8, reinterpret_cast<uint64_t>(reply.bytes.data()));
  EXPECT_EQ(driver.ioctl("renderD128", 0xC028648A, record), EAGAIN);
}

TEST(SimFaults, GlobsStayInAFolderUnlessTold) {
  EXPECT_TRUE(simGlobMatches("/sys/*/x", "/sys/bus/x"));
  EXPECT_FALSE(simGlobMatches("/sys/*/x", "/sys/bus/pci/x"));
  EXPECT_TRUE(simGlobMatches("/sys/**/x", "/sys/bus/pci/x"));
  EXPECT_TRUE(simGlobMatches("ovgpu.?", "ovgpu.7"));
  EXPECT_FALSE(simGlobMatches("ovgpu.?", "ovgpu.17"));
  EXPECT_TRUE(simGlobMatches("*", "ovgpu.17"));
  EXPECT_FALSE(simGlobMatches("ovgpu", "ovgpu.1"));
  EXPECT_FALSE(simGlobMatches("ovgpu.1", "ovgpu"));
}

TEST(SimFaults, FilesAndOpens) {
  TestDriver driver(R"({})", {"file(/sys/**/numa_node)#2:errno=EACCES", "open(/etc/ovparams):cut=3",
                              "file(/etc/*):hang=7"});
  SimFileFault fault;
  const auto access = [&](const char* path, bool opens) {
    fault = {};
    fault.cut = -1;
    simFileFaults(driver.image(), path, opens ? SIM_AIM_OPEN : SIM_AIM_LOOK, &fault);
  };
  access("/sys/bus/a/numa_node", false);
  EXPECT_EQ(fault.error, 0);
  access("/sys/bus/b/numa_node", true);
  EXPECT_EQ(fault.error, EACCES);
  access("/etc/ovparams", false);
  EXPECT_EQ(fault.cut, -1);
  EXPECT_EQ(fault.hangMs, 7u);
  access("/etc/ovparams", true);
  EXPECT_EQ(fault.cut, 3);
}

}  // namespace
