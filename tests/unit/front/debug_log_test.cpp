#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "command_access/version_command_access.h"
#include "common_define.h"

namespace tolk {
namespace {

namespace fs = std::filesystem;

/// A command whose log has been turned on once, and turned to plain text since.
class DebugLog : public testing::Test {
 protected:
  DebugLog()
      : path_(fs::path(testing::TempDir()) / ("debug_log_" + std::to_string(::getpid()))),
        command_({{"--debug", {path_.string()}}}) {
    command_.work();
    frontLogFile().transform = [](const std::string& line) { return "plain " + line; };
    fs::remove(path_);
  }

  ~DebugLog() override {
    frontLogger().remove(&frontLogFile());
    frontLogFile().fileName.clear();
    fs::remove(path_);
  }

  /// Lines of the file that begin as plain text and have the words.
  int plainLinesWith(const std::string& words) const {
    std::ifstream file(path_);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("plain ") && line.find(words) != std::string::npos) ++count;
    }
    return count;
  }

  const fs::path path_;
  VersionCommandAccess command_;
};

TEST_F(DebugLog, RepeatMakesALostFileAgainAndLeavesTheRestAsItIs) {
  command_.work();
  EXPECT_EQ(plainLinesWith("orvane-tolk version"), 1);
  EXPECT_EQ(plainLinesWith(":work >> "), 1);
}

TEST_F(DebugLog, RepeatMayMeetALineThatIsOnItsWay) {
  constexpr int kLines = 200;
  constexpr int kRepeats = 20;
  command_.work();
  std::thread lateCall([] {
    for (int i = 0; i < kLines; ++i) TOLK_LOG(kInfo) << "late line";
  });
  for (int i = 0; i < kRepeats; ++i) command_.work();
  lateCall.join();
  EXPECT_EQ(plainLinesWith("late line"), kLines);
  EXPECT_EQ(plainLinesWith(":work >> "), 1 + kRepeats);
}

}  // namespace
}  // namespace tolk
