#include "call_exchange.h"
#include "unit/cml/host_tree.h"

// Whose process numbers a sample is to have depends on where the tool runs.

namespace kelp::linux_ {
namespace {

using tolk_test::CallScript;
using tolk_test::get;
using tolk_test::put;

class ProcessSampleHost : public tolk_test::HostTree {
 protected:
  /// What is sent as the kind of environment, ask and fetch alike.
  static std::uint32_t environmentSent() {
    CallScript script(30, 2, 4856, [](std::uint8_t* payload) {
      put<std::uint32_t>(payload, 32, 1);
      put<std::uint32_t>(payload, 36, 0);
      return 0U;
    });
    EXPECT_TRUE(script.perform<MiscMkisIntfName::kQueryProcGpuUtil>(QueryProcGpuUtilParam{}).ok());
    EXPECT_EQ(script.sent.size(), 2U);
    const auto asked = get<std::uint32_t>(script.sent.front().data(), 4);
    EXPECT_EQ(get<std::uint32_t>(script.sent.back().data(), 4), asked);
    return asked;
  }
};

TEST_F(ProcessSampleHost, OnAHostHasTheHostsNumbers) {
  file("/proc/mounts", "tmpfs /sys/fs/cgroup tmpfs rw 0 0\n");
  file("/proc/1/cgroup", "12:cpu:/\n");
  EXPECT_EQ(environmentSent(), 0U);
}

TEST_F(ProcessSampleHost, InAContainerHasTheCallersNumbers) {
  file("/proc/mounts", "tmpfs /sys/fs/cgroup tmpfs rw 0 0\n");
  file("/proc/1/cgroup", "12:cpu:/docker/0a1b\n");
  EXPECT_EQ(environmentSent(), 1U);
}

TEST_F(ProcessSampleHost, WhereNothingTellsHasTheHostsNumbers) {
  EXPECT_EQ(environmentSent(), 0U);
}

}  // namespace
}  // namespace kelp::linux_
