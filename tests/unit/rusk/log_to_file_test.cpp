#include "rusk/log_to_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "rusk/log_cipher.h"
#include "temp_folder.h"

namespace {

using rusk_test::readFile;
using rusk_test::writeFile;

class LogToFileTest : public testing::Test {
 protected:
  LogToFileTest() {
    log.fileName = folder.file("y.log");
    log.minLevel = rusk::kPassEverything;
  }

  std::string content() const { return readFile(log.fileName); }
  bool openOf(const std::string& fileName) {
    log.fileName = fileName;
    return log.open();
  }

  rusk_test::TempFolder folder;
  rusk::LogToFile log;
};

TEST_F(LogToFileTest, AppendsLineAndLineEnd) {
  ASSERT_TRUE(log.open());
  EXPECT_TRUE(log.write("one", 1));
  EXPECT_EQ(content(), "one\n");  // flushed while still open
  EXPECT_TRUE(log.write("two", 6));
  EXPECT_EQ(content(), "one\ntwo\n");
}

TEST_F(LogToFileTest, WritesNothingBeforeItIsOpened) {
  EXPECT_FALSE(log.write("line", 6));
  EXPECT_FALSE(std::filesystem::exists(log.fileName));
}

TEST_F(LogToFileTest, DropsLinesBelowItsLevel) {
  ASSERT_TRUE(log.open());
  log.minLevel = 4;
  EXPECT_FALSE(log.write("three", 3));
  EXPECT_TRUE(log.write("four", 4));
  log.minLevel = rusk::kPassNothing;
  EXPECT_FALSE(log.write("six", 6));
  EXPECT_EQ(content(), "four\n");
}

TEST_F(LogToFileTest, PassesNothingUntilItIsGivenALevel) {
  rusk::LogToFile untouched;
  untouched.fileName = log.fileName;
  ASSERT_TRUE(untouched.open());
  EXPECT_FALSE(untouched.write("six", 6));
  EXPECT_EQ(untouched.maxLines, 10000u);
  EXPECT_FALSE(untouched.useTransform);
}

TEST_F(LogToFileTest, MissingFolderIsCreated) {
  const auto mask = ::umask(027);
  const bool opened = openOf(folder.file("x/y.log"));
  ::umask(mask);
  ASSERT_TRUE(opened);
  struct stat info {};
  ASSERT_EQ(::stat(folder.file("x").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0750u);
  log.write("line", 3);
  EXPECT_EQ(content(), "line\n");
}

TEST_F(LogToFileTest, OnlyOneFolderIsCreated) {
  EXPECT_FALSE(openOf(folder.file("a/b/y.log")));
  EXPECT_FALSE(std::filesystem::exists(folder.file("a")));
  EXPECT_FALSE(log.write("line", 6));
}

TEST_F(LogToFileTest, BackslashEndsAFolderName) {
  ASSERT_TRUE(openOf(folder.file("x\\y.log")));
  EXPECT_TRUE(std::filesystem::is_directory(folder.file("x\\")));
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.file("x\\y.log")));
}

TEST_F(LogToFileTest, FailedOpenLeavesNoFileBehindTheLog) {
  ASSERT_TRUE(log.open());
  const std::string first = log.fileName;
  EXPECT_FALSE(openOf(folder.file("a/b/y.log")));
  EXPECT_FALSE(log.write("lost", 6));
  EXPECT_EQ(readFile(first), "");
}

TEST_F(LogToFileTest, CanBeOpenedAgainElsewhere) {
  ASSERT_TRUE(log.open());
  log.write("first", 3);
  const std::string first = log.fileName;
  ASSERT_TRUE(openOf(folder.file("z.log")));
  log.write("second", 3);
  EXPECT_EQ(readFile(first), "first\n");
  EXPECT_EQ(content(), "second\n");
}

TEST_F(LogToFileTest, ExistingFileIsContinued) {
  writeFile(log.fileName, "old\n");
  ASSERT_TRUE(log.open());
  log.write("new", 3);
  EXPECT_EQ(content(), "old\nnew\n");
}

TEST_F(LogToFileTest, LogOfMoreThanTenThousandLinesRestartsOnTheNextLine) {
  ASSERT_TRUE(log.open());
  for (int line = 0; line < 10001; ++line) log.write("l", 3);
  EXPECT_EQ(content().size(), 2u * 10001);
  log.write("next", 3);
  EXPECT_EQ(content(), "next\n");
  log.write("after", 3);
  EXPECT_EQ(content(), "next\nafter\n");
}

TEST_F(LogToFileTest, FileOfMoreThanTenThousandLinesIsEmptiedByTheFirstLine) {
  std::string old;
  for (int line = 0; line < 10001; ++line) old += "l\n";
  writeFile(log.fileName, old);
  ASSERT_TRUE(log.open());
  EXPECT_EQ(content(), old);
  log.write("next", 3);
  EXPECT_EQ(content(), "next\n");
}

TEST_F(LogToFileTest, TwoRunsShareOneCount) {
  log.maxLines = 3;
  ASSERT_TRUE(log.open());
  log.write("1", 3);
  log.write("2", 3);

  rusk::LogToFile secondRun;
  secondRun.fileName = log.fileName;
  secondRun.minLevel = rusk::kPassEverything;
  secondRun.maxLines = 3;
  ASSERT_TRUE(secondRun.open());
  secondRun.write("3", 3);
  secondRun.write("4", 3);
  EXPECT_EQ(content(), "1\n2\n3\n4\n");
  secondRun.write("5", 3);
  EXPECT_EQ(content(), "5\n");
}

TEST_F(LogToFileTest, UnfinishedLastLineCounts) {
  writeFile(log.fileName, "1\n2");
  log.maxLines = 1;
  ASSERT_TRUE(log.open());
  log.write("next", 3);
  EXPECT_EQ(content(), "next\n");
}

TEST_F(LogToFileTest, LinesAreCountedAcrossBlocksOfAnyContent) {
  const std::string longLine(100000, 'x');
  writeFile(log.fileName, longLine + "\n" + std::string(70000, '\0') + "\n\n");
  log.maxLines = 3;
  ASSERT_TRUE(log.open());
  log.write("4", 3);
  EXPECT_TRUE(content().ends_with("\n\n4\n"));
  log.write("5", 3);
  EXPECT_EQ(content(), "5\n");
}

TEST_F(LogToFileTest, TransformReplacesTheLineOnlyWhileItIsUsed) {
  log.transform = [](const std::string& line) { return "<" + line + ">"; };
  ASSERT_TRUE(log.open());
  log.write("a", 3);
  log.useTransform = true;
  log.write("b", 3);
  EXPECT_EQ(content(), "a\n<b>\n");
}

TEST_F(LogToFileTest, MissingTransformLeavesTheLine) {
  log.useTransform = true;
  ASSERT_TRUE(log.open());
  EXPECT_TRUE(log.write("a", 3));
  EXPECT_EQ(content(), "a\n");
}

TEST_F(LogToFileTest, TransformIsNotAskedForADroppedLine) {
  int asked = 0;
  log.useTransform = true;
  log.transform = [&](const std::string& line) {
    ++asked;
    return line;
  };
  log.write("not open", 6);
  ASSERT_TRUE(log.open());
  log.minLevel = 5;
  log.write("too low", 4);
  EXPECT_EQ(asked, 0);
}

TEST_F(LogToFileTest, TransformRunsOutsideTheMutex) {
  ASSERT_TRUE(log.open());
  log.useTransform = true;
  log.transform = [this](const std::string& line) {
    if (line == "outer") log.write("inner", 3);
    return line;
  };
  log.write("outer", 3);
  EXPECT_EQ(content(), "inner\nouter\n");
}

TEST_F(LogToFileTest, EncipheredRecordsEndInALineEnd) {
  log.transform = rusk::encipherLine;
  log.useTransform = true;
  ASSERT_TRUE(log.open());
  log.write("a line", 3);
  log.write("", 3);
  EXPECT_EQ(content(), rusk::encipherLine("a line") + "\n" + std::string(5, '\0') + "\n");
}

TEST_F(LogToFileTest, NamesThatAreNoFileDoNotOpen) {
  const std::string plain = folder.file("plain");
  writeFile(plain, "");
  for (const std::string& name :
       {std::string(), folder.file(""), folder.file("") + "/", plain + "/y.log", plain + "/",
        folder.file(std::string(300, 'n')), std::string(100000, 'n'), std::string(50000, '/') + "n/n/n",
        std::string("/"), std::string("/proc/self/none/y")}) {
    EXPECT_FALSE(openOf(name)) << name.substr(0, 100);
    EXPECT_FALSE(log.write("lost", 6));
  }
}

TEST_F(LogToFileTest, BareFileNameHasNoFolderToCreate) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.file(""));
  EXPECT_TRUE(openOf("bare.log"));
  EXPECT_TRUE(openOf("./dotted.log"));
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::exists(folder.file("bare.log")));
  EXPECT_TRUE(std::filesystem::exists(folder.file("dotted.log")));
}

TEST_F(LogToFileTest, SeparatorAloneIsNoFolderToCreate) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.file(""));
  EXPECT_TRUE(openOf("\\y.log"));
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::exists(folder.file("\\y.log")));
  EXPECT_FALSE(std::filesystem::exists(folder.file("\\")));
}

TEST_F(LogToFileTest, FullDeviceLosesLinesInSilence) {
  ASSERT_TRUE(openOf("/dev/full"));
  for (int line = 0; line < 3; ++line) EXPECT_FALSE(log.write(std::string(10000, 'x'), 3));
}

TEST_F(LogToFileTest, EndlessDeviceIsNotCounted) {
  ASSERT_TRUE(openOf("/dev/zero"));
  EXPECT_TRUE(log.write("swallowed", 3));
}

TEST_F(LogToFileTest, FileThatVanishesIsMadeAgainByTheRestart) {
  log.maxLines = 1;
  ASSERT_TRUE(log.open());
  std::filesystem::remove(log.fileName);
  log.write("1", 3);
  log.write("2", 3);
  EXPECT_FALSE(std::filesystem::exists(log.fileName));
  log.write("3", 3);
  EXPECT_EQ(content(), "3\n");
}

TEST_F(LogToFileTest, RestartThatFailsLosesLinesInSilence) {
  log.maxLines = 0;
  ASSERT_TRUE(openOf(folder.file("x/y.log")));
  log.write("1", 3);
  std::filesystem::remove_all(folder.file("x"));
  EXPECT_FALSE(log.write("2", 3));
  EXPECT_FALSE(log.write("3", 3));
}

TEST_F(LogToFileTest, LinesOfThreadsStayWhole) {
  constexpr int kThreads = 4;
  constexpr int kLines = 250;
  log.transform = [](const std::string& line) { return line + line; };
  log.useTransform = true;
  ASSERT_TRUE(log.open());
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (int line = 0; line < kLines; ++line)
        log.write("<" + std::to_string(thread * kLines + line) + ">", 3);
    });
  }
  for (auto& thread : threads) thread.join();

  std::multiset<std::string> expected;
  for (int line = 0; line < kThreads * kLines; ++line) {
    const std::string text = "<" + std::to_string(line) + ">";
    expected.insert(text + text);
  }
  std::multiset<std::string> found;
  std::istringstream lines(content());
  for (std::string line; std::getline(lines, line);) found.insert(line);
  EXPECT_EQ(found, expected);
}

TEST_F(LogToFileTest, RestartsAndReopensWhileThreadsWrite) {
  log.maxLines = 5;
  ASSERT_TRUE(log.open());
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&] {
      while (!done) log.write("line", 3);
    });
  }
  for (int round = 0; round < 50; ++round) EXPECT_TRUE(log.open());
  done = true;
  for (auto& thread : threads) thread.join();
  std::istringstream lines(content());
  for (std::string line; std::getline(lines, line);) EXPECT_EQ(line, "line");
}

}  // namespace
