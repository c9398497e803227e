#include <gtest/gtest.h>

#include <cerrno>

#include "test_driver.h"

namespace {

constexpr uint32_t kProbe1 = 0xC00C4DAE;
constexpr uint32_t kProbe0 = 0xC0104DB0;
constexpr uint32_t kCall = 0xC0084DAF;
constexpr uint32_t kList0 = 0xC1484DB1;

const char* const kOneGpu = R"({"gpus": [{"model": "B250A"}]})";

Record scanRecord() {
  return Record(48).put(4, 4, 13).put(8, 4, 0).put(12, 4, 24);
}

Record listRecord(uint64_t count) {
  return Record(36 + 12 * count).put(4, 4, 13).put(8, 4, 1).put(12, 4, (count + 1) * 12).put(24, 2, count);
}

TEST(SimNegotiation, ProbeTellsProtocolOne) {
  TestDriver driver(kOneGpu);
  Record probe(12);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kProbe1, probe), 0);
  EXPECT_EQ(probe.get(0, 2), 1u);
  EXPECT_EQ(probe.get(2, 2), 1u);
  EXPECT_EQ(probe.get(4, 2), 1u);
  EXPECT_EQ(probe.get(6, 2), 1u);
}

TEST(SimNegotiation, ProbeTellsWhatTheHostSays) {
  TestDriver driver(R"({"gpus": [{"model": "B250A"}], "protocol": {"major": 5, "minor": 2}})");
  Record probe(12);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kProbe1, probe), 0);
  EXPECT_EQ(probe.get(0, 2), 5u);
  EXPECT_EQ(probe.get(2, 2), 2u);
}

TEST(SimNegotiation, OldestDriverAnswersNoProbeAndHasFourRecords) {
  TestDriver driver(R"({"gpus": [{"model": "B230"}], "protocol": "none"})");
  Record probe1(12);
  Record probe0(16);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kProbe1, probe1), ENOTTY);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kProbe0, probe0), ENOTTY);
  Record list(328);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kList0, list), ENOTTY);
  const struct {
    uint32_t request;
    size_t size;
    int error;
  } records[] = {{0xC0484D05, 72, 0},  {0xC0A04DA6, 160, 0},     {0xB9884DA7, 14728, 0},
                 {0x81084DA9, 264, 0}, {0xC0584D05, 88, ENOTTY}, {0x802A4DB2, 42, ENOTTY},
                 {kCall, 4096, ENOTTY}};
  for (const auto& row : records) {
    Record record(row.size);
    EXPECT_EQ(driver.ioctl("ovgpu.0", row.request, record), row.error) << std::hex << row.request;
  }
}

TEST(SimNegotiation, ProtocolZeroListIsPaged) {
  TestDriver driver(R"({"gpus": [{"model": "B230"}], "protocol": 0})");
  Record probe1(12);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kProbe1, probe1), ENOTTY);
  Record probe(16);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kProbe0, probe), 0);
  EXPECT_EQ(probe.get(0, 4), 0u);
  const uint64_t total = probe.get(4, 4);
  ASSERT_GT(total, 20u);
  uint64_t got = 0;
  uint64_t statusVersion = 99;
  while (got < total) {
    Record page = Record(328).put(0, 4, got).put(4, 4, 20);
    ASSERT_EQ(driver.ioctl("ovgpu.0", kList0, page), 0);
    const uint64_t count = page.get(4, 4);
    ASSERT_EQ(count, std::min<uint64_t>(20, total - got));
    for (uint64_t i = 0; i < count; ++i) {
      if (page.get(8 + 16 * i, 4) == 2) statusVersion = page.get(12 + 16 * i, 4);
    }
    got += count;
  }
  EXPECT_EQ(statusVersion, 1u);
  Record beyond = Record(328).put(0, 4, total).put(4, 4, 20);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kList0, beyond), 0);
  EXPECT_EQ(beyond.get(4, 4), 0u);
}

TEST(SimNegotiation, ScanCountsListAndNodes) {
  TestDriver driver(R"({"gpus": [{"model": "B250A"}, {"model": "B250A"}], "interfaces": [
      {"name": 2, "min": 2, "max": 3}, {"name": 999, "min": 7, "max": 9}]})");
  Record scan = scanRecord();
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, scan), 0);
  EXPECT_EQ(scan.get(4, 4), 0u);
  EXPECT_EQ(scan.get(24, 2), 2u);
  EXPECT_EQ(scan.get(28, 2), 2u);
  EXPECT_EQ(scan.get(30, 2), 2u);

  Record list = listRecord(2);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, list), 0);
  EXPECT_EQ(list.get(4, 4), 0u);
  EXPECT_EQ(list.get(24, 2), 2u);
  EXPECT_EQ(list.get(36, 2), 2u);
  EXPECT_EQ(list.get(38, 1), 3u);
  EXPECT_EQ(list.get(39, 1), 2u);
  EXPECT_EQ(list.get(48, 2), 999u);
  EXPECT_EQ(list.get(50, 1), 9u);
  EXPECT_EQ(list.get(51, 1), 7u);
}

TEST(SimNegotiation, EverythingServedIsListedAtItsHighest) {
  TestDriver driver(kOneGpu);
  Record scan = scanRecord();
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, scan), 0);
  const uint64_t count = scan.get(24, 2);
  Record list = listRecord(count);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, list), 0);
  std::map<uint64_t, uint64_t> versions;
  for (uint64_t i = 0; i < count; ++i) {
    EXPECT_EQ(list.get(38 + 12 * i, 1), list.get(39 + 12 * i, 1));
    versions[list.get(36 + 12 * i, 2)] = list.get(38 + 12 * i, 1);
  }
  const std::map<uint64_t, uint64_t> needed{{2, 3},  {3, 1},  {4, 3},  {6, 1},  {8, 2},  {9, 1},  {10, 1},
                                            {11, 1}, {13, 1}, {14, 1}, {16, 1}, {32, 1}, {48, 1}, {52, 1},
                                            {56, 1}, {57, 1}, {60, 2}, {61, 1}, {62, 1}, {67, 0}, {71, 0}};
  for (const auto& [name, version] : needed) {
    ASSERT_TRUE(versions.contains(name)) << name;
    EXPECT_EQ(versions[name], version) << name;
  }
}

TEST(SimNegotiation, ListOfMoreThanAHundredEntriesIsDeliveredWhole) {
  std::string interfaces;
  for (int i = 0; i < 1500; ++i) {
    interfaces +=
        (i ? "," : "") + std::string("{\"name\":") + std::to_string(1000 + i) + ",\"min\":1,\"max\":1}";
  }
  TestDriver driver(R"({"gpus": [{"model": "B250A"}], "interfaces": [)" + interfaces + "]}");
  Record scan = scanRecord();
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, scan), 0);
  ASSERT_EQ(scan.get(24, 2), 1500u);
  Record list = listRecord(1500);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, list), 0);
  EXPECT_EQ(list.get(36 + 12 * 1499, 2), 2499u);
}

TEST(SimNegotiation, HeadersAreChecked) {
  TestDriver driver(R"({"gpus": [{"model": "B250A"}], "interfaces": {"8": [1, 2], "60": 2, "998": 1}})");
  Record unknownKind = Record(48).put(8, 4, 3).put(12, 4, 24);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kCall, unknownKind), EINVAL);
  Record badScan = Record(48).put(8, 4, 0).put(12, 4, 20);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, badScan), 0);
  EXPECT_EQ(badScan.get(4, 4), 3u);
  Record smallList = Record(48).put(8, 4, 1).put(12, 4, 24).put(24, 2, 5);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, smallList), 0);
  EXPECT_EQ(smallList.get(4, 4), 6u);

  Record payload(0);
  EXPECT_EQ(driver.call("ovgpu.0", 997, 1, 24, payload), 2) << "not listed";
  EXPECT_EQ(driver.call("ovgpu.0", 998, 1, 24, payload), 4) << "listed and not served";
  EXPECT_EQ(driver.call("ovgpu.0", 60, 1, 12, payload), 4) << "served and not listed";
  EXPECT_EQ(driver.call("ovgpu.0", 8, 2, 56, payload), 3) << "payload too small";
  EXPECT_EQ(driver.call("ovgpu.0", 8, 1, 60, payload), 0);
  Record disagrees = Record(200).put(8, 4, 2).put(12, 4, 100).put(24, 2, 8).put(26, 1, 2).put(28, 4, 60);
  ASSERT_EQ(driver.ioctl("ovgpu.0", kCall, disagrees), 0);
  EXPECT_EQ(disagrees.get(4, 4), 3u) << "body and payload size disagree";
  Record nothing(0);
  EXPECT_EQ(driver.ioctl("ovgpu.0", 0xC0044D99, nothing), ENOTTY);
}

TEST(SimNegotiation, DriverThatIsNotLoadedHasNoDevice) {
  TestDriver driver(R"({"driver_loaded": false, "gpus": [{"model": "B250A"}]})");
  Record probe(12);
  EXPECT_EQ(driver.ioctl("ovgpu.0", kProbe1, probe), ENODEV);
}

TEST(SimNegotiation, MemoryThatCannotBeReachedIsTold) {
  TestDriver driver(kOneGpu);
  Record nothing(0);
  nothing.bytes.shrink_to_fit();
  EXPECT_EQ(driver.ioctl("ovgpu.0", kCall, nothing), EFAULT);
}

}  // namespace
