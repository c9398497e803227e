#include "rusk/log_line.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "line_recorder.h"

namespace {

using rusk::LogLevel;
using rusk_test::LineRecorder;

/// Like every such type it prints itself; counts how often it did.
struct Printed {
  std::atomic<int>* times;
};
std::ostream& operator<<(std::ostream& out, const Printed& item) {
  ++*item.times;
  return out << "printed";
}

class LogLineTest : public testing::Test {
 protected:
  LogLineTest() { logger.add(&recorder); }

  template <class Item>
  std::string printed(const Item& item) {
    recorder.lines.clear();
    rusk::LogLine("s", 1, "f", LogLevel::kInfo, logger) << item;
    return items();
  }

  /// What follows the stamp and level of the only line.
  std::string rest() {
    if (recorder.lines.size() != 1) return "<" + std::to_string(recorder.lines.size()) + " lines>";
    const std::string& line = recorder.lines[0].first;
    return line.substr(line.find('/'));
  }
  std::string items() {
    const std::string text = rest();
    return text.substr(text.find(">> ") + 3);
  }

  const std::string thread = std::to_string(::gettid());
  LineRecorder recorder;
  rusk::Logger logger;
};

TEST_F(LogLineTest, HasStampLevelThreadPlaceAndItems) {
  rusk::LogLine("controller", 80, "start", LogLevel::kInfo, logger) << "driver mode is " << -2;
  ASSERT_EQ(recorder.lines.size(), 1u);
  const std::string& line = recorder.lines[0].first;

  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, micros = 0, end = 0;
  ASSERT_EQ(std::sscanf(line.c_str(), "[%d.%d.%d %d:%d:%d.%d]%n", &year, &month, &day, &hour, &minute,
                        &second, &micros, &end),
            7);
  EXPECT_GE(year, 2024);
  EXPECT_GE(hour, 8);
  EXPECT_LE(hour, 31);
  EXPECT_EQ(line.substr(static_cast<std::size_t>(end)),
            " I/" + thread + " controller:80:start >> driver mode is  -2 ");
  EXPECT_EQ(recorder.lines[0].second, 3);
}

TEST_F(LogLineTest, MacroNamesFileWithoutFoldersLineAndFunction) {
  const unsigned line = __LINE__ + 1;
  RUSK_LOG(logger, LogLevel::kWarn) << "x";
  EXPECT_EQ(rest(), "/" + thread + " log_line_test.cpp:" + std::to_string(line) + ":TestBody >> x ");
}

TEST_F(LogLineTest, MacroTakesAStatedPlace) {
  const unsigned line = __LINE__ + 1;
  RUSK_LOG_AS(logger, LogLevel::kError, "lumo_def", "consumeMv") << "x";
  EXPECT_EQ(rest(), "/" + thread + " lumo_def:" + std::to_string(line) + ":consumeMv >> x ");
}

TEST_F(LogLineTest, LineWithoutItemsEndsBehindTheArrows) {
  RUSK_LOG_AS(logger, LogLevel::kError, "s", "f");
  EXPECT_TRUE(rest().ends_with(":f >> "));
}

TEST_F(LogLineTest, LineNumberIsUnsigned) {
  rusk::LogLine("s", 4294967295u, "f", LogLevel::kInfo, logger);
  EXPECT_EQ(rest(), "/" + thread + " s:4294967295:f >> ");
}

TEST_F(LogLineTest, EveryLevelHasItsLetter) {
  const std::string letters = "UTDIWEFUU";
  for (int level = 0; level <= 8; ++level) {
    recorder.lines.clear();
    RUSK_LOG(logger, static_cast<LogLevel>(level)) << "x";
    ASSERT_EQ(recorder.lines.size(), 1u);
    const std::string& line = recorder.lines[0].first;
    EXPECT_EQ(line[line.find("] ") + 2], letters[static_cast<std::size_t>(level)]) << level;
    EXPECT_EQ(recorder.lines[0].second, level);
  }
  RUSK_LOG(logger, static_cast<LogLevel>(-1)) << "x";
  EXPECT_NE(recorder.lines.back().first.find("] U/"), std::string::npos);
}

TEST_F(LogLineTest, NameLongerThan100CharactersKeepsItsLast100) {
  const std::string tail(100, 'n');
  rusk::LogLine("x" + tail, 1, "yz" + tail, LogLevel::kInfo, logger);
  EXPECT_EQ(rest(), "/" + thread + " ..." + tail + ":1:..." + tail + " >> ");
}

TEST_F(LogLineTest, NameOf100CharactersStays) {
  const std::string name(100, 'n');
  rusk::LogLine(name, 1, name, LogLevel::kInfo, logger);
  EXPECT_EQ(rest(), "/" + thread + " " + name + ":1:" + name + " >> ");
}

TEST_F(LogLineTest, EachItemIsFollowedByOneBlank) {
  RUSK_LOG(logger, LogLevel::kInfo) << "a = " << 1 << "" << 'c';
  EXPECT_EQ(items(), "a =  1  c ");
}

TEST_F(LogLineTest, PrintsTexts) {
  char buffer[8] = "wri";
  const char* const nothing = nullptr;
  EXPECT_EQ(printed("literal"), "literal ");
  EXPECT_EQ(printed(std::string("std")), "std ");
  EXPECT_EQ(printed(std::string_view("view of", 4)), "view ");
  EXPECT_EQ(printed(static_cast<const char*>("pointer")), "pointer ");
  EXPECT_EQ(printed(static_cast<char*>(buffer)), "wri ");
  EXPECT_EQ(printed(buffer), "wri ");
  EXPECT_EQ(printed(nothing), " ");
}

TEST_F(LogLineTest, TextFieldWithoutNulEndsAtItsEnd) {
  struct {
    char name[4];
    char behind[4];
  } const record = {{'n', 'a', 'm', 'e'}, {'m', 'o', 'r', 'e'}};
  EXPECT_EQ(printed(record.name), "name ");
}

TEST_F(LogLineTest, PrintsIntegers) {
  EXPECT_EQ(printed(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808 ");
  EXPECT_EQ(printed(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615 ");
  EXPECT_EQ(printed(std::int16_t{-5}), "-5 ");
  EXPECT_EQ(printed(true), "1 ");
  EXPECT_EQ(printed(false), "0 ");
}

TEST_F(LogLineTest, PrintsCharactersAsCharacters) {
  EXPECT_EQ(printed('c'), "c ");
  EXPECT_EQ(printed(static_cast<std::uint8_t>('u')), "u ");
  EXPECT_EQ(printed(static_cast<signed char>('s')), "s ");
}

TEST_F(LogLineTest, PrintsFloatingNumbersWithSixDigits) {
  EXPECT_EQ(printed(1.5), "1.5 ");
  EXPECT_EQ(printed(0.1f), "0.1 ");
  EXPECT_EQ(printed(1e6), "1e+06 ");
  EXPECT_EQ(printed(123456.0), "123456 ");
  EXPECT_EQ(printed(1.0 / 3.0), "0.333333 ");
  EXPECT_EQ(printed(-0.00001234), "-1.234e-05 ");
  EXPECT_EQ(printed(100.0L), "100 ");
  EXPECT_EQ(printed(std::numeric_limits<double>::infinity()), "inf ");
  EXPECT_EQ(printed(std::numeric_limits<long double>::lowest()), "-1.18973e+4932 ");
}

TEST_F(LogLineTest, PrintsEnumerationsAsNumbers) {
  enum class Wide : std::uint32_t { kItem = 16 };
  enum class Narrow : std::uint8_t { kItem = 65 };
  enum Plain { kItem = 3 };
  EXPECT_EQ(printed(Wide::kItem), "16 ");
  EXPECT_EQ(printed(Narrow::kItem), "65 ");
  EXPECT_EQ(printed(kItem), "3 ");
  EXPECT_EQ(printed(LogLevel::kFatal), "6 ");
}

TEST_F(LogLineTest, PrintsWhateverAStreamTakes) {
  std::atomic<int> times = 0;
  EXPECT_EQ(printed(Printed{&times}), "printed ");
  EXPECT_EQ(printed(std::filesystem::path("/dev")), "\"/dev\" ");
  EXPECT_EQ(printed(reinterpret_cast<void*>(0x1234)), "0x1234 ");
}

TEST_F(LogLineTest, IsHandedOverOnceAtTheEndOfItsStatement) {
  const auto linesSoFar = [this] { return recorder.lines.size(); };
  RUSK_LOG(logger, LogLevel::kInfo) << linesSoFar() << "and" << linesSoFar();
  EXPECT_EQ(items(), "0 and 0 ");
}

TEST_F(LogLineTest, StatementWithinAStatementIsALineOfItsOwn) {
  const auto inner = [this] {
    RUSK_LOG(logger, LogLevel::kInfo) << "inner";
    return 1;
  };
  RUSK_LOG(logger, LogLevel::kInfo) << "outer" << inner();
  ASSERT_EQ(recorder.lines.size(), 2u);
  EXPECT_TRUE(recorder.lines[0].first.ends_with(" >> inner "));
  EXPECT_TRUE(recorder.lines[1].first.ends_with(" >> outer 1 "));
}

TEST_F(LogLineTest, IsComposedAlsoWithoutTargets) {
  std::atomic<int> times = 0;
  const rusk::Logger nobody;
  RUSK_LOG(nobody, LogLevel::kInfo) << Printed{&times};
  EXPECT_EQ(times, 1);
}

TEST_F(LogLineTest, ReachesTargetsOfAnyMinimumLevelWhichDecideThemselves) {
  recorder.minLevel = rusk::kPassNothing;
  RUSK_LOG(logger, LogLevel::kTrace) << "x";
  EXPECT_EQ(recorder.lines.size(), 1u);
}

TEST_F(LogLineTest, FailingTargetDoesNotReachTheCaller) {
  struct Throwing final : rusk::LogTarget {
    bool write(const std::string&, int) override { throw std::runtime_error("disk"); }
    bool open() override { return false; }
  } target;
  logger.add(&target);
  EXPECT_NO_THROW(RUSK_LOG(logger, LogLevel::kInfo) << "x");
}

TEST_F(LogLineTest, LeavesErrnoAlone) {
  struct Failing final : rusk::LogTarget {
    bool write(const std::string&, int) override { return ::close(-1) == 0; }
    bool open() override { return false; }
  } target;
  logger.add(&target);
  errno = ENODEV;
  RUSK_LOG(logger, LogLevel::kInfo) << "x";
  EXPECT_EQ(errno, ENODEV);
}

TEST_F(LogLineTest, LinesOfThreadsCarryTheirOwnIdentifier) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kLines = 200;
  std::vector<std::string> ids(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t index = 0; index < kThreads; ++index) {
    threads.emplace_back([this, &id = ids[index], index] {
      id = std::to_string(::gettid());
      for (std::size_t line = 0; line < kLines; ++line) {
        rusk::LogLine("s", 1, "f", LogLevel::kInfo, logger) << index << line;
      }
    });
  }
  for (auto& each : threads) each.join();

  std::set<std::string> rests;
  for (const auto& [line, level] : recorder.lines) rests.insert(line.substr(line.find('/')));
  std::set<std::string> expected;
  for (std::size_t index = 0; index < kThreads; ++index) {
    for (std::size_t line = 0; line < kLines; ++line) {
      expected.insert("/" + ids[index] + " s:1:f >> " + std::to_string(index) + " " + std::to_string(line) +
                      " ");
    }
  }
  EXPECT_EQ(recorder.lines.size(), kThreads * kLines);
  EXPECT_EQ(rests, expected);
}

}  // namespace
