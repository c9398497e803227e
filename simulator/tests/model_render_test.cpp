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

TEST(SimRender, CoresAndWhatTheyCanDo) {
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

// Two encoder cores behind two decoder cores, of which one has sessions of two guests and of the host.
const char* const kSessions = R"({"interfaces": {"100002": [2, 3]}, "gpus": [{"model": "B230",
    "vgpu_types": [{"id": 1, "name": "t", "framebuffer": 1}], "vpu_sessions": [
    {"core": 3, "instance": 0, "pid": 71, "codec": "HEVC", "h_res": 1280, "v_res": 720, "fps": 25, "bitrate": 900},
    {"core": 3, "instance": 2, "pid": 72, "codec": 16, "vgpu": 7},
    {"core": 3, "instance": 5, "pid": 73, "codec": "AVC", "vgpu": 8, "state": 4}]}]})";

int askCore(TestDriver& driver, uint32_t operation, Record& reply, uint32_t core, uint32_t instance = 0,
            uint32_t vgpu = 0) {
  Record record(40);
  record.put(0, 4, operation).put(4, 4, reply.bytes.size());
  record.put(8, 8, reinterpret_cast<uint64_t>(reply.bytes.data())).put(16, 4, core).put(20, 4, instance);
  record.put(24, 4, vgpu).put(28, 4, vgpu != 0);
  return driver.ioctl("renderD128", kPointed, record);
}

TEST(SimRender, SessionStates) {
  TestDriver driver(kSessions);
  Record reply(152);
  ASSERT_EQ(askCore(driver, 2, reply, 3), 0);
  EXPECT_EQ(reply.get(0, 4), 3u);
  EXPECT_EQ(reply.get(4, 4), 8u);
  const uint64_t states[] = {1, 0, 1, 0, 0, 4, 0, 0};
  for (size_t i = 0; i < 8; ++i) EXPECT_EQ(reply.get(8 + 4 * i, 4), states[i]) << i;
  for (size_t i = 8; i < 36; ++i) EXPECT_EQ(reply.get(8 + 4 * i, 4), 0xFFFFFFFFu) << "no such instance";
  ASSERT_EQ(askCore(driver, 2, reply, 9), 0);
  EXPECT_EQ(reply.get(0, 4), 9u);
  EXPECT_EQ(reply.get(4, 4), 0u);
  EXPECT_EQ(reply.get(8, 4), 0xFFFFFFFFu) << "an absent core";
}

TEST(SimRender, SessionStatesOfVersionTwoHaveNoCore) {
  TestDriver driver(R"({"interfaces": {"100002": 2}, "gpus": [{"model": "B230", "vpu_cores": [
      {"kind": "encoder", "threads": 1, "instances": 40}],
      "vpu_sessions": [{"core": 0, "instance": 31, "pid": 71, "codec": 0}]}]})");
  Record reply(132);
  ASSERT_EQ(askCore(driver, 2, reply, 0), 0);
  EXPECT_EQ(reply.get(0, 4), 32u);
  EXPECT_EQ(reply.get(4, 4), 0u);
  EXPECT_EQ(reply.get(4 + 4 * 31, 4), 1u);
  Record newer(152);
  EXPECT_EQ(askCore(driver, 2, newer, 0), EINVAL) << "that is version 3";
}

TEST(SimRender, SessionMetrics) {
  TestDriver driver(kSessions);
  Record reply(36);
  ASSERT_EQ(askCore(driver, 1, reply, 3, 0), 0);
  const uint64_t expected[] = {1, 71, 12, 1280, 720, 25, 900, 8, 0};
  for (size_t i = 0; i < 9; ++i) EXPECT_EQ(reply.get(4 * i, 4), expected[i]) << i;
  ASSERT_EQ(askCore(driver, 1, reply, 3, 5), 0);
  EXPECT_EQ(reply.get(0, 4), 4u) << "a status of failure";
  ASSERT_EQ(askCore(driver, 1, reply, 1, 3), 0);
  EXPECT_EQ(reply.get(0, 4), 0u);
  EXPECT_EQ(reply.get(4, 4), 0u);
  EXPECT_EQ(reply.get(28, 4), 19u) << "counted over the decoder cores";
  EXPECT_EQ(askCore(driver, 1, reply, 3, 8), ENOENT);
  EXPECT_EQ(askCore(driver, 1, reply, 4, 0), ENOENT);
}

TEST(SimRender, SessionsOfOneGuestAlone) {
  TestDriver driver(kSessions);
  Record states(152);
  ASSERT_EQ(askCore(driver, 2, states, 3, 0, 7), 0);
  EXPECT_EQ(states.get(8, 4), 0u) << "the host's";
  EXPECT_EQ(states.get(16, 4), 1u);
  EXPECT_EQ(states.get(28, 4), 0u) << "another guest's";
  Record metrics(36);
  ASSERT_EQ(askCore(driver, 1, metrics, 3, 5, 7), 0);
  EXPECT_EQ(metrics.get(0, 4), 0u);
  ASSERT_EQ(askCore(driver, 1, metrics, 3, 5, 8), 0);
  EXPECT_EQ(metrics.get(4, 4), 73u);
}

TEST(SimRender, InlineStatesBeginWithTheCore) {
  TestDriver driver(R"({"interfaces": {"100001": 0, "100002": 1}, "gpus": [{"model": "B210", "vpu_sessions": [
      {"core": 1, "instance": 2, "pid": 71, "codec": "VP8"}]}]})");
  Record record = Record(160, 0xAA).put(0, 2, 2).put(2, 2, 1).put(4, 4, 0);
  ASSERT_EQ(driver.ioctl("renderD128", kInline, record), 0);
  EXPECT_EQ(record.get(8, 4), 1u);
  EXPECT_EQ(record.get(12, 4), 8u);
  EXPECT_EQ(record.get(24, 4), 1u);
  record = Record(160).put(0, 2, 1).put(2, 2, 1).put(4, 4, 2);
  ASSERT_EQ(driver.ioctl("renderD128", kInline, record), 0);
  EXPECT_EQ(record.get(12, 4), 71u);
  EXPECT_EQ(record.get(16, 4), 11u);
  EXPECT_EQ(record.get(36, 4), 2u);
}

TEST(SimRender, FormMustBeThatOfTheListedVersion) {
  TestDriver driver(kFen1);
  Record record(160);
  EXPECT_EQ(driver.ioctl("renderD128", kInline, record), EINVAL);
  TestDriver old(R"({"interfaces": {"100000": 1, "100003": null}, "gpus": [{"model": "B230"}]})");
  Record busy(64);
  EXPECT_EQ(ask(old, 0, busy), EINVAL);
  Record clock(128);
  EXPECT_EQ(ask(old, 3, clock), EINVAL) << "not listed";
  TestDriver oldest(R"({"render_protocol": "none", "gpus": [{"model": "B230"}]})");
  EXPECT_EQ(oldest.ioctl("renderD128", kInline, record), 0);
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

TEST(SimRender, FirstTwoVersionsAreInline) {
  for (const char* const version : {"0", "1"}) {
    std::string interfaces;
    for (const char* const name : {"100000", "100001", "100002", "100003", "100004"}) {
      interfaces += (interfaces.empty() ? "\"" : ", \"") + std::string(name) + "\": " + version;
    }
    TestDriver driver(R"({"interfaces": {)" + interfaces + R"(}, "gpus": [{"model": "B210",
        "vpu_sessions": [{"core": 1, "instance": 2, "pid": 71, "codec": "VP8", "fps": 25}],
        "values": {"vpu_utilization": [10, 20], "vpu_clock": [1000, 2000]}}]})");
    Record list = Record(328).put(4, 4, 20);
    ASSERT_EQ(driver.ioctl("renderD128", kList, list), 0);
    EXPECT_EQ(list.get(8, 4), 100000u);
    EXPECT_EQ(list.get(12, 4), version[0] == '1');
    const auto ask = [&](uint64_t operation, uint64_t core, uint64_t instance) {
      Record record = Record(160, 0xAA).put(0, 2, operation).put(2, 2, core).put(4, 4, instance);
      EXPECT_EQ(driver.ioctl("renderD128", kInline, record), 0) << operation;
      return record;
    };
    EXPECT_EQ(ask(0, 0, 0).get(8 + 4, 4), 20u);
    EXPECT_EQ(ask(0, 0, 0).get(8 + 8, 4), 0xFFFFFFFFu) << "an absent core";
    const Record metrics = ask(1, 1, 2);
    EXPECT_EQ(metrics.get(8, 4), 1u);
    EXPECT_EQ(metrics.get(8 + 4, 4), 71u);
    EXPECT_EQ(metrics.get(8 + 20, 4), 25u);
    EXPECT_EQ(metrics.get(8 + 36, 4), 0u) << "zeros behind the reply";
    const Record states = ask(2, 1, 0);
    EXPECT_EQ(states.get(8, 4), 1u);
    EXPECT_EQ(states.get(8 + 4, 4), 8u);
    EXPECT_EQ(states.get(8 + 8 + 4 * 2, 4), 1u);
    EXPECT_EQ(ask(3, 0, 0).get(8 + 8, 4), 2000u);
    EXPECT_EQ(driver.unexpected(), 0u);
    Record cores = Record(160).put(0, 2, 4);
    if (version[0] == '0') {
      EXPECT_EQ(driver.ioctl("renderD128", kInline, cores), EINVAL) << "the family tells the cores";
    } else {
      ASSERT_EQ(driver.ioctl("renderD128", kInline, cores), 0);
      EXPECT_EQ(cores.get(8, 4), 2u);
      EXPECT_EQ(cores.get(12, 1), 1u);
      EXPECT_EQ(cores.get(12 + 8, 1), 0u);
      EXPECT_EQ(cores.get(12 + 8 + 2, 2), 8u);
    }
    Record pointed = Record(40).put(4, 4, 64);
    EXPECT_EQ(driver.ioctl("renderD128", kPointed, pointed), EINVAL);
  }
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
