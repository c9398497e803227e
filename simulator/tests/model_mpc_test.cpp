// A GPU whose MPC mode is switched and set.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotSupported = 5;
constexpr int kBusy = 7;
constexpr int kNoSuchObject = 12;

// In brackets: what the mode is when the host starts.
std::string hostWith(const std::string& state) {
  return R"({"gpus": [{"model": "B250A"}, {"model": "B240", "mpc": {
      "profiles": [{"id": 3, "name": "1c.16g", "cores": 1, "memory": 16384},
                   {"id": 1, "name": "3c.48g", "cores": 3, "memory": 49152}],
      "configurations": [{"id": 2, "name": "pair", "profiles": [3, 3]},
                         {"id": 0, "name": "full", "profiles": [1]},
                         {"id": 5, "name": "odd", "profiles": [9]}],
      "plain_values": {"utilization": 33}, "parent_values": {"utilization": "n/a"}, )" +
         state + R"(}, "values": {"pstate": 4}}, {"model": "B250A"}]})";
}

class SimMpc : public testing::Test {
 protected:
  static int switchTo(TestDriver& driver, uint64_t mode) {
    Record payload = Record(17).put(0, 1, mode);
    return driver.call("ovgpu.1", 15, 1, payload);
  }

  static int configure(TestDriver& driver, uint64_t id) {
    Record payload = Record(18).put(0, 2, id);
    return driver.call("ovgpu.1", 12, 1, payload);
  }

  static uint64_t number(TestDriver& driver, const std::string& node, unsigned name, unsigned version,
                         size_t size, size_t offset, size_t width) {
    Record payload(0);
    EXPECT_EQ(driver.call(node, name, version, size, payload), kDone) << node << " interface " << name;
    return payload.get(offset, width);
  }

  static uint64_t deviceType(TestDriver& driver, const std::string& node) {
    return number(driver, node, 8, 2, 60, 16, 4);
  }

  // -19 for a node that is not there.
  static int answers(TestDriver& driver, const std::string& node) {
    Record payload(0);
    return driver.call(node, 8, 2, 60, payload);
  }
};

TEST_F(SimMpc, SwitchedOnHasTheLowestConfiguration) {
  TestDriver driver(hostWith(R"("enabled": false)"));
  EXPECT_EQ(deviceType(driver, "ovgpu.1"), 0u);
  EXPECT_EQ(number(driver, "ovgpu.1", 8, 2, 60, 20, 4), 1u) << "it can be switched";
  EXPECT_EQ(number(driver, "ovgpu.1", 8, 2, 60, 28, 2), 1u);
  EXPECT_EQ(number(driver, "ovgpu.1", 2, 3, 92, 0, 4), 33u);
  EXPECT_EQ(answers(driver, "ovgpu.3"), -ENODEV);

  ASSERT_EQ(switchTo(driver, 1), kDone);
  EXPECT_TRUE(driver.image()->unsettled);
  EXPECT_EQ(deviceType(driver, "ovgpu.1"), 1u) << "the GPU keeps its node";
  EXPECT_EQ(number(driver, "ovgpu.1", 8, 2, 60, 28, 2), 0xFFFFu);
  EXPECT_EQ(number(driver, "ovgpu.1", 2, 3, 92, 0, 4), 0xFFFFFFFFu);
  EXPECT_EQ(number(driver, "ovgpu.1", 16, 1, 118, 0, 2), 0u);
  EXPECT_EQ(number(driver, "ovgpu.1", 11, 1, 86, 0, 2), 1u);
  EXPECT_EQ(number(driver, "ovgpu.1", 11, 1, 86, 2, 2), 3u) << "numbers behind those of all other GPUs";
  EXPECT_EQ(deviceType(driver, "ovgpu.3"), 2u);
  EXPECT_EQ(number(driver, "ovgpu.3", 14, 1, 60, 0, 2), 1u);
  EXPECT_EQ(answers(driver, "ovgpu.4"), -ENODEV);
}

TEST_F(SimMpc, ConfigurationReplacesTheInstances) {
  TestDriver driver(hostWith(R"("current": 0)"));
  EXPECT_EQ(deviceType(driver, "ovgpu.2"), 2u);
  EXPECT_EQ(number(driver, "ovgpu.2", 3, 1, 72, 0, 8), uint64_t{49152} << 20);
  ASSERT_EQ(configure(driver, 2), kDone);
  EXPECT_EQ(number(driver, "ovgpu.1", 16, 1, 118, 0, 2), 2u);
  EXPECT_EQ(number(driver, "ovgpu.1", 11, 1, 86, 0, 2), 2u);
  EXPECT_EQ(number(driver, "ovgpu.1", 11, 1, 86, 6, 2), 4u);
  EXPECT_EQ(number(driver, "ovgpu.2", 3, 1, 72, 0, 8), uint64_t{16384} << 20);
  EXPECT_EQ(number(driver, "ovgpu.2", 14, 1, 60, 0, 2), 0x0003u);
  EXPECT_EQ(number(driver, "ovgpu.4", 14, 1, 60, 0, 2), 0x0103u);
  EXPECT_EQ(number(driver, "ovgpu.4", 13, 1, 18, 0, 2), 1u);
  EXPECT_EQ(configure(driver, 7), kNoSuchObject);
  EXPECT_EQ(configure(driver, 5), kNoSuchObject) << "one of its profiles is not there";
  EXPECT_EQ(configure(driver, 65535), kNoSuchObject);
  ASSERT_EQ(configure(driver, 0), kDone);
  EXPECT_EQ(answers(driver, "ovgpu.4"), -ENODEV);
  EXPECT_EQ(number(driver, "ovgpu.2", 14, 1, 60, 0, 2), 0x0001u);
}

TEST_F(SimMpc, SwitchedOffIsAPlainDevice) {
  TestDriver driver(hostWith(R"("current": 2)"));
  EXPECT_EQ(answers(driver, "ovgpu.3"), kDone);
  ASSERT_EQ(switchTo(driver, 0), kDone);
  EXPECT_EQ(deviceType(driver, "ovgpu.1"), 0u);
  const uint64_t render = number(driver, "ovgpu.1", 8, 2, 60, 30, 2);
  EXPECT_NE(render, 0xFFFFu);
  EXPECT_EQ(number(driver, "ovgpu.1", 2, 3, 92, 0, 4), 33u);
  EXPECT_EQ(answers(driver, "ovgpu.2"), -ENODEV);
  EXPECT_EQ(answers(driver, "ovgpu.3"), -ENODEV);
  EXPECT_EQ(configure(driver, 2), kNotSupported) << "there is no configuration to be set";
  driver.image()->unsettled = 0;
  ASSERT_EQ(switchTo(driver, 0), kDone) << "as it is";
  EXPECT_FALSE(driver.image()->unsettled);
  EXPECT_EQ(switchTo(driver, 2), 1);
}

TEST_F(SimMpc, NodesOfTheCurrentStateAreCounted) {
  TestDriver driver(hostWith(R"("current": 0)"));
  const auto scan = [&] {
    Record record = Record(48).put(4, 4, 13).put(12, 4, 24);
    EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0084DAF, record), 0);
    return std::pair(record.get(28, 2), record.get(30, 2));
  };
  EXPECT_EQ(scan(), std::pair(uint64_t{4}, uint64_t{3}));
  configure(driver, 2);
  EXPECT_EQ(scan(), std::pair(uint64_t{5}, uint64_t{4}));
  switchTo(driver, 0);
  EXPECT_EQ(scan(), std::pair(uint64_t{3}, uint64_t{3}));
}

TEST_F(SimMpc, WhatWasSetOfTheGpuStays) {
  TestDriver driver(hostWith(R"("enabled": false)"));
  Record state = Record(20).put(0, 4, 11);
  ASSERT_EQ(driver.call("ovgpu.1", 68, 0, state), kDone);
  switchTo(driver, 1);
  EXPECT_EQ(number(driver, "ovgpu.1", 67, 0, 20, 0, 4), 11u);
  EXPECT_EQ(number(driver, "ovgpu.3", 67, 0, 20, 0, 4), 8u) << "an instance is new";
  switchTo(driver, 0);
  EXPECT_EQ(number(driver, "ovgpu.1", 67, 0, 20, 0, 4), 11u);
}

TEST_F(SimMpc, WhatWasSetOfAnInstanceGoesWithIt) {
  TestDriver driver(hostWith(R"("current": 2)"));
  Record state = Record(20).put(0, 4, 11);
  ASSERT_EQ(driver.call("ovgpu.2", 68, 0, state), kDone);
  EXPECT_EQ(number(driver, "ovgpu.2", 67, 0, 20, 0, 4), 11u);
  ASSERT_EQ(configure(driver, 2), kDone);
  EXPECT_EQ(number(driver, "ovgpu.2", 67, 0, 20, 0, 4), 8u);
}

TEST_F(SimMpc, ChangesWaitForOtherDevicesToBeClosed) {
  TestDriver driver(hostWith(R"("current": 0)"));
  driver.othersAreOpen = true;
  EXPECT_EQ(configure(driver, 2), kBusy);
  EXPECT_EQ(switchTo(driver, 0), kBusy);
  EXPECT_EQ(deviceType(driver, "ovgpu.1"), 1u);
}

TEST_F(SimMpc, OtherDevicesCannotBeSwitched) {
  TestDriver driver(hostWith(R"("current": 0)"));
  Record payload = Record(17).put(0, 1, 1);
  EXPECT_EQ(driver.call("ovgpu.0", 15, 1, payload), kNotSupported) << "no such mode";
  EXPECT_EQ(driver.call("ovgpu.2", 15, 1, payload), kNotSupported) << "an instance";
}

// Whatever of the change was written when the process was killed, the rest follows from it.
TEST_F(SimMpc, ChangeThatWasBegunIsBroughtToAnEnd) {
  constexpr uint32_t kOff = SIM_MPC_OFF;
  const struct {
    const char* from;
    uint64_t configuration;
  } changes[] = {{R"("current": 0)", 2}, {R"("current": 2)", 0}, {R"("current": 2)", kOff}};
  for (const auto& one : changes) {
    const std::string host = hostWith(one.from);
    TestDriver before(host);
    TestDriver after(host);
    for (TestDriver* const each : {&before, &after}) {
      Record state = Record(20).put(0, 4, 11);
      ASSERT_EQ(each->call("ovgpu.1", 68, 0, state), kDone);
      ASSERT_EQ(each->call("ovgpu.2", 68, 0, state), kDone);
    }
    ASSERT_EQ(one.configuration == kOff ? switchTo(after, 0) : configure(after, one.configuration), kDone);
    before.image()->calls = after.image()->calls;
    before.image()->unsettled = 1;
    SIM_AT(before.image(), SimGpu, gpus)[1].mpcNext = SIM_AT(after.image(), SimGpu, gpus)[1].mpcNext;
    const std::vector<uint64_t> whole = after.copy();
    std::vector<size_t> written;
    const std::vector<uint64_t> old = before.copy();
    // The word that says that the change is over is written last.
    const auto* const end = reinterpret_cast<char*>(&SIM_AT(before.image(), SimGpu, gpus)[1].mpcState);
    const auto last = static_cast<size_t>(end - reinterpret_cast<char*>(before.image())) / sizeof(uint64_t);
    for (size_t i = 0; i < whole.size(); ++i) {
      if (whole[i] != old[i] && i != last) written.push_back(i);
    }
    ASSERT_GT(written.size(), 5u);
    for (size_t count = 0; count <= written.size(); ++count) {
      for (const bool fromTheEnd : {false, true}) {
        std::vector<uint64_t> half = old;
        for (size_t i = 0; i < count; ++i) {
          const size_t place = written[fromTheEnd ? written.size() - 1 - i : i];
          half[place] = whole[place];
        }
        simSettle(reinterpret_cast<SimImage*>(half.data()));
        EXPECT_EQ(half, whole) << one.from << " to " << one.configuration << ", " << count << " words";
      }
    }
  }
}

TEST_F(SimMpc, SameConfigurationAgainKeepsWhatWasSetOfTheGpu) {
  TestDriver driver(hostWith(R"("current": 2)"));
  Record state = Record(20).put(0, 4, 11);
  ASSERT_EQ(driver.call("ovgpu.1", 68, 0, state), kDone);
  ASSERT_EQ(configure(driver, 2), kDone);
  EXPECT_EQ(number(driver, "ovgpu.1", 67, 0, 20, 0, 4), 11u);
}

TEST_F(SimMpc, InstancesAreOfTheConfigurationThatIsSet) {
  TestDriver driver(hostWith(R"("current": 2, "instances": [{"values": {"utilization": 7}}, {}])"));
  EXPECT_EQ(number(driver, "ovgpu.2", 2, 3, 92, 0, 4), 7u);
  configure(driver, 0);
  EXPECT_EQ(number(driver, "ovgpu.2", 2, 3, 92, 0, 4), 0u);
  configure(driver, 2);
  EXPECT_EQ(number(driver, "ovgpu.2", 2, 3, 92, 0, 4), 7u);
}

}  // namespace
