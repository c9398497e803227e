#include "value_pattern.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

namespace tolk {
namespace {

const std::string kUuid = "69a595f8-B61C-1978-3817-019f596bec2d";

struct PatternCase {
  std::string_view valuePattern;
  std::vector<std::string> fitting;
  std::vector<std::string> others;
};

const PatternCase kCases[] = {
    {pattern::kNone, {""}, {" ", "0"}},
    {".*", {"", "anything at all"}, {}},
    {pattern::kIdList,
     {"0", "10", "0,10,3", "4294967296"},
     {"", "00", "01", "0,", ",0", "0,,1", "0 1", "-1", "x"}},
    {pattern::kPositive, {"1", "90"}, {"", "0", "01", "1.5", "-1", "1,2"}},
    {pattern::kNumber, {"0", "007", "4294967296"}, {"", "-1", "1,2", "x", "1 2"}},
    {pattern::kText, {"a", "logs/a.log", "\xc3\xa9", "a,b"}, {"", "a b", "a\tb", "a\n"}},
    {pattern::kWordList, {"MEMORY", "MEMORY,page_0"}, {"", "A,", ",A", "A-B", "a.b", "A B"}},
    {pattern::kFieldList, {"index", "memory.total,index", ".", "a..b"}, {"", "index,", "a-b", "index name"}},
    {pattern::kAccess, {"r", "w"}, {"", "rw", "R", "x"}},
    {pattern::kUuidList,
     {kUuid, kUuid + "," + kUuid, kUuid + ", " + kUuid},
     {"", "GPU-" + kUuid, kUuid + ",", kUuid + kUuid, kUuid.substr(1), "g" + kUuid.substr(1)}},
    {pattern::kMetricList,
     {"GpuId,Temp", "Power,GpuId", "GpuId,,Freq", "GpuId,Temp,Foo", "Time,SlowdownCnt,GpuId",
      "GpuId,TotalSlowdownTimeMs"},
     {"", "GpuId", "Temp", "GpuId,Time", "GpuId,Temperature", "GpuIds,Temp", "GpuId Temp"}},
    {pattern::kDecimal,
     {"0", "0.0", "250.4", "10", "100.05"},
     {"", "01", ".5", "1.", "-1", "1e2", "1.2.3", "00"}},
    {pattern::kFormatList,
     {"csv", "noheader", "csv,noheader", "noheader,csv"},
     {"", "csv,csv", "json", "CSV", "csv,"}},
};

TEST(ValuePattern, FitsWholeValuesOnly) {
  for (const auto& [valuePattern, fitting, others] : kCases) {
    SCOPED_TRACE(valuePattern);
    for (const auto& value : fitting) EXPECT_TRUE(matchesPattern(valuePattern, value)) << value;
    for (const auto& value : others) EXPECT_FALSE(matchesPattern(valuePattern, value)) << value;
  }
}

TEST(ValuePattern, LongestValueThatFitsHas8192Bytes) {
  for (const auto valuePattern :
       {pattern::kNumber, pattern::kText, pattern::kWordList, pattern::kFieldList}) {
    SCOPED_TRACE(valuePattern);
    EXPECT_TRUE(matchesPattern(valuePattern, std::string(8192, '1')));
    EXPECT_FALSE(matchesPattern(valuePattern, std::string(8193, '1')));
  }
}

TEST(ValuePattern, LongValuesNeedLittleStack) {
  constexpr std::size_t kStackBytes = 512 * 1024;
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
  const auto matchAll = [](void*) -> void* {
    std::string ids = "0";
    while (ids.size() + 2 <= 8192) ids += ",0";
    EXPECT_TRUE(matchesPattern(pattern::kIdList, ids));
    EXPECT_FALSE(matchesPattern(pattern::kIdList, ids.substr(1)));
    EXPECT_TRUE(matchesPattern(pattern::kText, std::string(8192, 'a')));
    EXPECT_TRUE(matchesPattern(pattern::kMetricList, "GpuId,Temp," + std::string(8000, 'a')));
    EXPECT_FALSE(matchesPattern(pattern::kMetricList, "GpuId,Temp" + std::string(8000, 'a')));
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, matchAll, nullptr), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace tolk
