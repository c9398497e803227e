// The render node, at offsets written out here.
#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr uint32_t kProbe = 0xC010648B;
constexpr uint32_t kList = 0xC148648C;
constexpr uint32_t kInline = 0xC0A0648A;
constexpr uint32_t kPointed = 0xC028648A;

const char* const kFen1 = R"({"gpus": [{"model": "B230", "values": {"vpu_utilization": [10, 20, 30, 40],
    "vpu_clock": [1000, "n/a", 3000, 4000]}}]})";

// Asks for an operation with a reply buffer of `size` bytes.
int ask(TestDriver& driver, uint32_t operation, Record& reply) {
  Record record(40);
  record.put(0, 4, operation).put(4, 4, reply.bytes.size());
  record.put(8, 8, reinterpret_cast<uint64_t>(reply.bytes.data()));
  return driver.ioctl("renderD128", kPointed, record);
}

TEST(SimRender, ProbeAndList) {
  TestDriver driver(kFen1);
  Record probe(16);
  ASSERT_EQ(driver.ioctl("renderD128", kProbe, probe), 0);
  EXPECT_EQ(probe.get(0, 4), 0u);
  const uint64_t count = probe.get(4, 4);
  Record list = Record(328).put(4, 4, 20);
  ASSERT_EQ(driver.ioctl("renderD128", kList, list), 0);
  ASSERT_EQ(list.get(4, 4), count);
  EXPECT_EQ(list.get(8, 4), 100000u);
  EXPECT_EQ(list.get(12, 4), 2u);
  EXPECT_EQ(list.get(8 + 16 * (count - 1), 4), 100004u);
}

TEST(SimRender, NodeWithoutProbe) {
  TestDriver driver(R"({"render_protocol": "none", "gpus": [{"model": "B230"}]})");
  Record probe(16);
  EXPECT_EQ(driver.ioctl("renderD128", kProbe, probe), ENOTTY);
}

TEST(SimRender, Specification) {
  TestDriver driver(kFen1);
  Record reply(132);
  ASSERT_EQ(ask(driver, 4, reply), 0);
  EXPECT_EQ(reply.get(0, 4), 4u);
  EXPECT_EQ(reply.get(4, 1), 1u);
  EXPECT_EQ(reply.get(5, 1), 2u);
  EXPECT_EQ(reply.get(6, 2), 16u);
  EXPECT_EQ(reply.get(8, 4), 0xFFFFFFFFu);
  EXPECT_EQ(reply.get(4 + 8 * 3, 1), 0u);
  EXPECT_EQ(reply.get(4 + 8 * 3 + 2, 2), 8u);
  EXPECT_EQ(reply.get(4 + 8 * 4, 8), ~uint64_t{0}) << "an absent core reads all ones";
}

TEST(SimRender, UtilisationAndClock) {
  TestDriver driver(kFen1);
  Record busy(64);
  ASSERT_EQ(ask(driver, 0, busy), 0);
  EXPECT_EQ(busy.get(12, 4), 40u);
  EXPECT_EQ(busy.get(16, 4), 0xFFFFFFFFu);
  Record clock(128);
  ASSERT_EQ(ask(driver, 3, clock), 0);
  EXPECT_EQ(clock.get(0, 4), 1000u);
  EXPECT_EQ(clock.get(8, 4), 0xFFFFFFFFu);
  EXPECT_EQ(clock.get(16, 4), 3000u);
}

TEST(SimRender, InlineFormHasTheReplyBehindTheArguments) {
  TestDriver driver(R"({"interfaces": {"100000": 1}, "gpus": [{"model": "B230", "values": {
      "vpu_utilization": [10, 20, 30, 40]}}]})");
  Record record = Record(160, 0xAA).put(0, 2, 0).put(2, 2, 0).put(4, 4, 0);
  ASSERT_EQ(driver.ioctl("renderD128", kInline, record), 0);
  EXPECT_EQ(record.get(8, 4), 10u);
  EXPECT_EQ(record.get(20, 4), 40u);
  EXPECT_EQ(record.get(72, 8), 0u) << "zeros behind the reply";
}

TEST(SimRender, WrongSizeOrOperationIsInvalid) {
  TestDriver driver(kFen1);
  Record reply(100);
  EXPECT_EQ(ask(driver, 4, reply), EINVAL);
  Record other(64);
  EXPECT_EQ(ask(driver, 77, other), EINVAL);
}

TEST(SimRender, OtherNodesAreNotRenderNodes) {
  TestDriver driver(kFen1);
  Record probe(16);
  EXPECT_EQ(driver.ioctl("card0", kProbe, probe), ENOTTY);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kProbe, probe), ENOTTY);
  Record probe1(12);
  EXPECT_EQ(driver.ioctl("renderD128", 0xC00C4DAE, probe1), ENOTTY);
}

}  // namespace
