#include <gtest/gtest.h>

#include "driver_script.h"
#include "linux/ap/access_point.h"
#include "unit/cml/host_tree.h"

// Commands of an access point that are more than one call of the driver.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::put;

constexpr const char* kMisc = "/dev/ovgpu.3";
constexpr const char* kRender = "/dev/dri/renderD131";

/// Device 3, whose reset does what a test tells it to.
class AccessPointCommandsTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    driver_.allowOpen(kMisc);
    driver_.allowRender(kRender);
    driver_.on(8, [](std::uint8_t* payload) {
      put<std::uint16_t>(payload, 0, 3);
      put<std::uint16_t>(payload, 30, 131);
      return 0U;
    });
    file("/sys/module/ovgpu/parameters/disable_vpu", "0\n");
    folder("/sys/bus/platform/drivers/ovgpu_vde");
  }

  DriverScript driver_{{{8, 1, 2}, {50, 1, 1}}};
  AccessPoint point_{
      DevCuid{.type = DevType::kPhysical, .arch = DevArch::kTor1, .sbdf = 0x1'0041'1F07, .intId = 3}};
};

// The reset.

TEST_F(AccessPointCommandsTest, ResetRenewsTheRenderContextAndKeepsTheMiscContext) {
  ASSERT_TRUE(point_.init().ok());
  driver_.on(50, [this](std::uint8_t*) {
    EXPECT_FALSE(driver_.isOpen(kRender)) << "the driver wants the node closed";
    EXPECT_TRUE(driver_.isOpen(kMisc));
    return 0U;
  });
  EXPECT_TRUE(point_.doExec(ResetDeviceCmd()).ok());
  EXPECT_EQ(driver_.called(50), 1U);
  EXPECT_EQ(driver_.opens(kRender), 2U);
  EXPECT_EQ(driver_.opens(kMisc), 1U);
  EXPECT_TRUE(driver_.isOpen(kRender));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> device  3  render context reinit state is  0 "));
  EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).value().size(), 1U);
}

TEST_F(AccessPointCommandsTest, FailedResetRenewsTheRenderContextToo) {
  ASSERT_TRUE(point_.init().ok());
  driver_.on(50, [](std::uint8_t*) { return 7U; });
  EXPECT_EQ(point_.doExec(ResetDeviceCmd()).state(), KelpReturn::kBusy);
  EXPECT_EQ(driver_.opens(kRender), 2U);
  EXPECT_TRUE(point_.doExec(QueryVpuSpecCmd()).ok());
}

TEST_F(AccessPointCommandsTest, RenderNodeThatDoesNotComeBackLeavesTheResetDone) {
  ASSERT_TRUE(point_.init().ok());
  driver_.on(50, [this](std::uint8_t*) {
    driver_.allowOpen(kRender, ENXIO);
    return 0U;
  });
  EXPECT_TRUE(point_.doExec(ResetDeviceCmd()).ok());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> render context init failed, state =  1 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> device  3  render context reinit state is  1 "));
  EXPECT_EQ(point_.doExec(QueryVpuSpecCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(driver_.isOpen(kMisc));
}

TEST_F(AccessPointCommandsTest, DriverWithoutResetSaysSo) {
  driver_.listed = {{8, 1, 2}};
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(point_.doExec(ResetDeviceCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(point_.doExec(QueryVpuSpecCmd()).ok());
}

// Affinity.

TEST_F(AccessPointCommandsTest, AffinityIsReadFromTheFunctionsFolder) {
  const std::string folder = "/sys/bus/pci/devices/0001:41:1f.7/";
  file(folder + "local_cpulist", "0-31,64-95\n");
  file(folder + "local_cpus", " 00000000,ffffffff\n");
  file(folder + "numa_node", "-1\n");
  const auto query = [this](AffinityType type) {
    return point_.doExec(QueryAffinityWithinNodeCmd{.type = type}).value();
  };
  EXPECT_EQ(query(AffinityType::kCpuList), "0-31,64-95");
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> cpu affinity string file path is  " + folder + "local_cpulist "));
  EXPECT_EQ(query(AffinityType::kCpuBitmask), "00000000,ffffffff");
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> cpu affinity bitmask file path is  " + folder + "local_cpus "));
  EXPECT_EQ(query(AffinityType::kMemory), "-1") << "a text, whatever it says";
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> memory affinity file path is  " + folder + "numa_node "));
}

TEST_F(AccessPointCommandsTest, AffinityOfAnUnknownTypeIsNotSupported) {
  const auto affinity = point_.doExec(QueryAffinityWithinNodeCmd{.type = static_cast<AffinityType>(3)});
  EXPECT_EQ(affinity.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> invalid affinity type. type is  3 "));
}

TEST_F(AccessPointCommandsTest, AffinityThatCannotBeReadIsAFailedRead) {
  EXPECT_EQ(point_.doExec(QueryAffinityWithinNodeCmd()).state(), KelpReturn::kReadFailed);
  file("/sys/bus/pci/devices/0001:41:1f.7/local_cpulist", "");
  const auto empty = point_.doExec(QueryAffinityWithinNodeCmd());
  EXPECT_TRUE(empty.ok());
  EXPECT_EQ(empty.value(), "");
  file("/sys/bus/pci/devices/0001:41:1f.7/local_cpulist", std::string((1 << 20) + 1, '1'));
  EXPECT_EQ(point_.doExec(QueryAffinityWithinNodeCmd()).state(), KelpReturn::kReadFailed);
}

TEST_F(AccessPointCommandsTest, PhysicalDeviceIsNoVgpu) {
  ASSERT_TRUE(point_.init().ok());
  EXPECT_EQ(point_.doExec(QueryVirtTypeCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point_.doExec(QueryVgpuIdCmd()).state(), KelpReturn::kNotSupported);
  EXPECT_EQ(point_.doExec(QueryVmPidCmd()).state(), KelpReturn::kNotSupported);
}

}  // namespace
}  // namespace kelp::linux_
