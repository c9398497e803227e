#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "linux/fs_helper.h"
#include "support/log_capture.h"

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;

/// A folder of the test's own and the log of what is read there.
class FsHelperTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "fs_helper.XXXXXX";
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }
  void makeFolder(const std::string& name) const { ASSERT_EQ(::mkdir(path(name).c_str(), 0755), 0); }
  void makeLink(const std::string& name) const { ASSERT_EQ(::symlink("nowhere", path(name).c_str()), 0); }

  static std::vector<std::string> sorted(std::vector<std::string> names) {
    std::ranges::sort(names);
    return names;
  }

  std::string folder_;
  tolk_test::LogCapture log_;
};

using Names = std::vector<std::string>;

TEST_F(FsHelperTest, ReadsAWholeFileAsBytes) {
  const std::string content("a\0b\n\xFF", 5);
  std::string text = "before";
  EXPECT_EQ(FsHelper::read(write("file", content), text), 5);
  EXPECT_EQ(text, content);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(FsHelperTest, ReadsProcfsFileThatReportsNoSizeWhole) {
  struct stat status {};
  ASSERT_EQ(::stat("/proc/self/status", &status), 0);
  ASSERT_EQ(status.st_size, 0);
  std::string text;
  EXPECT_GT(FsHelper::read("/proc/self/status", text), 0);
  EXPECT_TRUE(text.starts_with("Name:")) << text;
}

TEST_F(FsHelperTest, ReadsSysfsFileByItsBytesAndNotByItsReportedSize) {
  const char* const file = "/sys/devices/system/cpu/possible";
  struct stat status {};
  ASSERT_EQ(::stat(file, &status), 0) << "the tool, and so its tests, need a mounted sysfs";
  std::string text;
  const std::int64_t size = FsHelper::read(file, text);
  EXPECT_EQ(size, std::ssize(text));
  EXPECT_GT(size, 0);
  EXPECT_LT(size, status.st_size) << "sysfs reports a page for every file";
  EXPECT_EQ(text.find('\0'), std::string::npos);
}

TEST_F(FsHelperTest, EmptyFileIsNoFailureAndLeavesTheText) {
  const std::string file = write("empty", "");
  std::string text = "before";
  EXPECT_EQ(FsHelper::read(file, text), 0);
  EXPECT_EQ(text, "before");
  ASSERT_EQ(log_.lines.size(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kWarn, ">> Read text file: " + file + " is empty "));
}

TEST_F(FsHelperTest, MissingFileIsAFailure) {
  std::string text = "before";
  EXPECT_EQ(FsHelper::read(path("missing"), text), -1);
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(
      log_.has(LogLevel::kError, ">> Read text file : " + path("missing") + " , open failed, state =  4 "));
}

TEST_F(FsHelperTest, FolderInPlaceOfAFileIsAFailure) {
  std::string text = "before";
  EXPECT_EQ(FsHelper::read(folder_, text), -1);
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Read text file: " + folder_ + " , failed to read file size "));
}

TEST_F(FsHelperTest, EndlessFileIsAFailure) {
  std::string text = "before";
  EXPECT_EQ(FsHelper::read("/dev/zero", text), -1);
  EXPECT_EQ(text, "before");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Read text file: /dev/zero , failed to read file size "));
}

TEST_F(FsHelperTest, LongestFileIsReadAndALongerOneIsNot) {
  const std::string longest(FsHelper::kLongestFile, 'x');
  std::string text;
  EXPECT_EQ(FsHelper::read(write("longest", longest), text), FsHelper::kLongestFile);
  EXPECT_EQ(text, longest);
  EXPECT_EQ(FsHelper::read(write("longer", longest + "x"), text), -1);
}

TEST_F(FsHelperTest, ReadDataDeliversWhatIsThereFromTheOffset) {
  std::ifstream file(write("file", "0123456789"));
  char buffer[8] = "-------";
  EXPECT_EQ(FsHelper::readData(file, 3, buffer, 4), 4U);
  EXPECT_EQ(std::string(buffer), "3456---");
  EXPECT_EQ(FsHelper::readData(file, 8, buffer, 7), 2U);
  EXPECT_EQ(std::string(buffer), "8956---");
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(FsHelperTest, ReadDataAtTheEndOfTheFileIsAnOverflow) {
  std::ifstream file(write("file", "0123456789"));
  char buffer[4] = "---";
  EXPECT_EQ(FsHelper::readData(file, 10, buffer, 3), 0U);
  EXPECT_EQ(std::string(buffer), "---");
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Read data: offset( 10 ) overflow, filesize( 10 ) "));
}

TEST_F(FsHelperTest, ReadDataOfAFileThatCannotBeMeasuredIsNothing) {
  std::ifstream file("/dev/zero");
  char buffer[4] = "---";
  EXPECT_EQ(FsHelper::readData(file, 0, buffer, 3), 0U);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Read data: failed to read file size "));
}

TEST_F(FsHelperTest, WalkLooksAtTheKindsOfItsMask) {
  makeFolder("folder");
  makeLink("link");
  write("file", "");
  const auto names = [&](int mask) {
    Names found;
    EXPECT_EQ(FsHelper::iterEntries(
                  folder_,
                  [&](const dirent& entry) {
                    found.emplace_back(entry.d_name);
                    return true;
                  },
                  mask),
              0);
    return sorted(found);
  };
  EXPECT_EQ(names(kDirectories), (Names{".", "..", "folder"}));
  EXPECT_EQ(names(kOthers), (Names{"file"}));
  EXPECT_EQ(names(kLinks), (Names{"link"}));
  EXPECT_EQ(names(kLinks | kOthers), (Names{"file", "link"}));
  EXPECT_EQ(names(kAllKinds), (Names{".", "..", "file", "folder", "link"}));
}

TEST_F(FsHelperTest, WalkEndsWhenTheCallbackSaysSo) {
  write("a", "");
  write("b", "");
  int calls = 0;
  EXPECT_EQ(FsHelper::iterEntries(
                folder_,
                [&](const dirent&) {
                  ++calls;
                  return false;
                },
                kOthers),
            0);
  EXPECT_EQ(calls, 1);
}

TEST_F(FsHelperTest, WalkOfAMissingFolderFailsAndKeepsErrno) {
  errno = 0;
  EXPECT_EQ(FsHelper::iterEntries(path("missing"), [](const dirent&) { return true; }), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> iterFiles() fail to open : " + path("missing") + " "));
  write("file", "");
  EXPECT_EQ(FsHelper::iterEntries(path("file"), [](const dirent&) { return true; }), -1);
  EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(FsHelperTest, SearchFindsAllNamesThatFit) {
  for (const char* name : {"card10", "card2", "renderD128", "card"}) {
    makeFolder(name);
  }
  write("card7", "");
  const NameTest card = FsHelper::expression("card[0-9]+", true);
  Names names;
  EXPECT_EQ(FsHelper::searchEntries(folder_, card, names, kDirectories), 0);
  EXPECT_EQ(sorted(names), (Names{"card10", "card2"}));
  names.clear();
  EXPECT_EQ(FsHelper::searchEntries(folder_, card, names, kDirectories | kOthers | kSorted), 0);
  EXPECT_EQ(names, (Names{"card10", "card2", "card7"}));
}

TEST_F(FsHelperTest, SearchOfAMissingFolderFails) {
  Names names;
  EXPECT_EQ(FsHelper::searchEntries(
                path("missing"), [](const char*) { return true; }, names, kAllKinds),
            -1);
  EXPECT_TRUE(names.empty());
}

TEST_F(FsHelperTest, SearchForOneEntryWithoutAMatchGivesAnEmptyName) {
  write("file", "");
  std::string name = "before";
  EXPECT_EQ(FsHelper::searchEntry(folder_, FsHelper::expression("other", true), name, kAllKinds), 0);
  EXPECT_EQ(name, "");
}

TEST_F(FsHelperTest, SearchForOneEntryInAMissingFolderFails) {
  std::string name = "before";
  EXPECT_EQ(FsHelper::searchEntry(
                path("missing"), [](const char*) { return true; }, name, kAllKinds),
            -1);
  EXPECT_EQ(name, "");
}

TEST_F(FsHelperTest, SortedSearchForOneEntryGivesTheFirstName) {
  for (const char* name : {"c", "a", "b"}) {
    write(name, "");
  }
  std::string name;
  EXPECT_EQ(FsHelper::searchEntry(
                folder_, [](const char*) { return true; }, name, kOthers | kSorted),
            0);
  EXPECT_EQ(name, "a");
  EXPECT_EQ(FsHelper::searchEntry(
                folder_, [](const char*) { return true; }, name, kOthers),
            0);
  EXPECT_EQ(name.size(), 1U);
}

TEST_F(FsHelperTest, HasEntryNeedsAMatchOfTheRightKind) {
  makeFolder("ovgpu.1");
  const NameTest one = FsHelper::expression("^ovgpu.1$", true);
  EXPECT_TRUE(FsHelper::hasEntry(folder_, one, kDirectories));
  EXPECT_FALSE(FsHelper::hasEntry(folder_, one, kOthers));
  EXPECT_FALSE(FsHelper::hasEntry(folder_, FsHelper::expression("^ovgpu.2$", true), kDirectories));
  EXPECT_FALSE(FsHelper::hasEntry(path("missing"), one, kDirectories));
}

TEST_F(FsHelperTest, MatchIsOfTheWholeTextOrOfAPart) {
  EXPECT_TRUE(FsHelper::matchNoThrow("gpu12", "gpu[0-9]+", true));
  EXPECT_FALSE(FsHelper::matchNoThrow("ovgpu12", "gpu[0-9]+", true));
  EXPECT_TRUE(FsHelper::matchNoThrow("ovgpu12", "gpu[0-9]+", false));
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(FsHelperTest, InvalidPatternMatchesNothingAndLogsOneLine) {
  EXPECT_FALSE(FsHelper::matchNoThrow("text", "[", true));
  ASSERT_EQ(log_.lines.size(), 1U);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> matchNoThrow() meet exception with error [ "));
  EXPECT_TRUE(log_.has(LogLevel::kError, " ] when match [ [ ] in [ text ] "));
}

TEST_F(FsHelperTest, WalkWithAnInvalidPatternEndsWithoutHits) {
  write("a", "");
  write("b", "");
  Names names;
  EXPECT_EQ(FsHelper::searchEntries(folder_, FsHelper::expression("(", true), names, kOthers), 0);
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(log_.count("matchNoThrow() meet exception"), 2U);
}

}  // namespace
}  // namespace kelp::linux_
