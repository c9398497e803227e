// Calls that a driver did not offer are counted, and all others are not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "test_driver.h"
#include "unexpected_calls.h"

namespace {

constexpr uint32_t kProbe1 = 0xC00C4DAE;
constexpr uint32_t kProbe0 = 0xC0104DB0;
constexpr uint32_t kCall = 0xC0084DAF;
constexpr uint32_t kList0 = 0xC1484DB1;

std::string linesOf(TestDriver& driver) {
  return unexpectedCalls({reinterpret_cast<const char*>(driver.image()), driver.image()->size});
}

void send(TestDriver& driver, uint32_t request, size_t size, const std::string& node = "ovgpu.0") {
  Record record(size);
  driver.ioctl(node, request, record);
}

TEST(SimUnexpected, NothingIsAtFirst) {
  TestDriver driver(R"({"gpus": [{"model": "B230"}]})");
  EXPECT_EQ(driver.unexpected(), 0u);
  EXPECT_EQ(linesOf(driver), "");
}

TEST(SimUnexpected, ProbesAndWhatIsOfferedAreNot) {
  for (const char* const protocol : {"1", "0", "\"none\""}) {
    TestDriver driver(std::string(R"({"protocol": )") + protocol + R"(, "gpus": [{"model": "B230"}]})");
    send(driver, kProbe1, 12);
    send(driver, kProbe0, 16);
    send(driver, 0xC010648B, 16, "renderD128");
    EXPECT_EQ(driver.unexpected(), 0u) << protocol;
  }
  TestDriver driver(R"({"gpus": [{"model": "B230", "values": {"power": {"0": {"status": 5}}}}]})");
  Record payload(24);
  EXPECT_EQ(driver.call("ovgpu.0", 55, 1, payload), 5);
  EXPECT_EQ(driver.unexpected(), 0u) << "refused and offered all the same";
}

TEST(SimUnexpected, CallsOfProtocolOne) {
  TestDriver driver(R"({"interfaces": {"8": [3, 5], "56": null}, "gpus": [{"model": "B230"}]})");
  Record payload(24);
  driver.call("ovgpu.0", 56, 1, payload);
  driver.call("ovgpu.0", 56, 1, payload);
  payload = Record(60);
  driver.call("ovgpu.0", 8, 2, payload);
  EXPECT_EQ(driver.call("ovgpu.0", 8, 4, payload), 4) << "listed and not served";
  payload = Record(25);
  driver.call("ovgpu.0", 55, 1, payload);
  Record noKind = Record(48).put(8, 4, 3).put(12, 4, 24);
  driver.ioctl("ovgpu.0", kCall, noKind);
  EXPECT_EQ(driver.unexpected(), 5u);
  EXPECT_EQ(linesOf(driver),
            "2 ovgpu.0 record 56 1\n1 ovgpu.0 record 8 2\n1 ovgpu.0 record 55 1\n"
            "1 ovgpu.0 unknown 0xc0084daf -\n");
}

TEST(SimUnexpected, CallsOfAnotherProtocol) {
  TestDriver one(R"({"gpus": [{"model": "B230"}]})");
  send(one, 0xC0484D05, 72);
  send(one, kList0, 328);
  EXPECT_EQ(linesOf(one), "1 ovgpu.0 unknown 0xc0484d05 -\n1 ovgpu.0 list 0xc1484db1 -\n");
  TestDriver zero(R"({"protocol": 0, "interfaces": {"2": 1}, "gpus": [{"model": "B230"}]})");
  send(zero, kCall, 4096);
  send(zero, 0xC0484D05, 72);
  send(zero, 0xC0504D05, 80);
  EXPECT_EQ(linesOf(zero),
            "1 ovgpu.0 unknown 0xc0084daf -\n1 ovgpu.0 record 2 0\n1 ovgpu.0 unknown 0xc0504d05 -\n");
  TestDriver none(R"({"protocol": "none", "gpus": [{"model": "B230"}]})");
  send(none, kList0, 328);
  send(none, 0x802A4DB2, 42);
  send(none, 0xC0484D05, 72);
  EXPECT_EQ(none.unexpected(), 2u);
}

TEST(SimUnexpected, DriverThatIsTooNewServesNothing) {
  TestDriver driver(R"({"protocol": {"major": 3, "minor": 2}, "gpus": [{"model": "B230"}]})");
  Record scan = Record(48).put(12, 4, 24);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kCall, scan), ENOTTY);
  EXPECT_EQ(driver.unexpected(), 1u);
  TestDriver both(R"({"protocol": {"major": 5, "minor": 1}, "gpus": [{"model": "B230"}]})");
  EXPECT_EQ(both.ioctl("ovgpu.0", kCall, scan), 0);
  EXPECT_EQ(both.unexpected(), 0u);
}

TEST(SimUnexpected, CommandsAreToldWithTheirNumber) {
  TestDriver driver(R"({"protocol": 0, "interfaces": {"56": null}, "gpus": [{"model": "B230"}]})");
  for (const uint64_t command : {0x50, 0x7F}) {
    Record record = Record(264).put(0, 8, command << 5 | uint64_t{2} << 24 | uint64_t{2} << 29);
    driver.ioctl("ovgpu.0", 0xC1084D01, record);
  }
  EXPECT_EQ(linesOf(driver), "1 ovgpu.0 smc 56 0x50\n1 ovgpu.0 smc 0xc1084d01 0x7f\n");
}

TEST(SimUnexpected, CallsOfGraphicsNodes) {
  TestDriver driver(
      R"({"interfaces": {"100000": 0, "100003": null, "100004": 0}, "gpus": [{"model": "B230"}]})");
  const auto inlined = [&](uint64_t operation) {
    Record record = Record(160).put(0, 2, operation);
    return driver.ioctl("renderD128", 0xC0A0648A, record);
  };
  EXPECT_EQ(inlined(0), 0);
  EXPECT_EQ(driver.unexpected(), 0u);
  EXPECT_EQ(inlined(3), EINVAL);
  EXPECT_EQ(inlined(4), EINVAL) << "the first version sends nothing";
  EXPECT_EQ(inlined(1), EINVAL) << "that is listed in another form";
  send(driver, 0xC0046401, 4, "card0");
  send(driver, 0xC0046401, 4, "renderD128");
  EXPECT_EQ(driver.unexpected(), 5u);
  TestDriver none(R"({"render_protocol": "none", "gpus": [{"model": "B230"}]})");
  send(none, 0xC148648C, 328, "renderD128");
  EXPECT_EQ(linesOf(none), "1 renderD128 list 0xc148648c -\n");
}

TEST(SimUnexpected, FaultsHideNothing) {
  TestDriver driver(R"({"interfaces": {"56": null}, "gpus": [{"model": "B230"}]})", {"ioctl:errno=EIO"});
  Record payload(24);
  EXPECT_EQ(driver.call("ovgpu.0", 56, 1, payload), -EIO);
  EXPECT_EQ(driver.unexpected(), 1u);
}

TEST(SimUnexpected, AllAreCountedWhenThereAreTooManyToTell) {
  TestDriver driver(R"({"gpus": [{"model": "B230"}]})");
  for (uint32_t i = 0; i < 100; ++i) send(driver, 0xC0044D20 + i, 4);
  EXPECT_EQ(driver.unexpected(), 100u);
  const std::string lines = linesOf(driver);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 64);
}

}  // namespace
