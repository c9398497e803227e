#include <gtest/gtest.h>

#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "kelp_log.h"
#include "lumo.h"

namespace {

std::string received;

void receive(const char* message, unsigned length) {
  EXPECT_EQ(std::strlen(message), length);
  received = message;
}

class LogConfigurationTest : public testing::Test {
 protected:
  LogConfigurationTest() { EXPECT_EQ(lumoLibraryGetLogConfiguration(&former_), LUMO_RETURN_SUCCESS); }
  ~LogConfigurationTest() override {
    EXPECT_EQ(lumoLibrarySetLogConfiguration(&former_), LUMO_RETURN_SUCCESS);
    std::filesystem::remove(path_);
  }

  LumoLogConfiguration former_;
  const std::string path_ = testing::TempDir() + "lumo-log-" + std::to_string(::getpid());
};

TEST(LibraryLogTest, TheFirstLineKeepsErrno) {
  // In a process of its own, in which nothing was logged before.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto log = [] {
    errno = EACCES;
    KELP_LOG(kError) << "a folder could not be opened";
    std::_Exit(errno == EACCES ? 0 : 1);
  };
  EXPECT_EXIT(log(), testing::ExitedWithCode(0), "");
}

TEST_F(LogConfigurationTest, NothingIsLoggedAtFirst) {
  EXPECT_EQ(former_.consoleLevel, 0U);
  EXPECT_EQ(former_.fileLevel, 0U);
  EXPECT_EQ(former_.callbackLevel, 0U);
  EXPECT_STREQ(former_.filePath, "");
  EXPECT_EQ(former_.maxFileLines, 10000U);
  EXPECT_EQ(former_.callback, nullptr);
}

TEST_F(LogConfigurationTest, WhatIsSetIsReadBack) {
  for (const unsigned level : {1U, 2U, 3U, 4U, 0U}) {
    LumoLogConfiguration set{};
    set.consoleLevel = 0;
    set.fileLevel = level;
    set.callbackLevel = 4 - level;
    set.maxFileLines = 100 + level;
    set.callback = receive;
    std::strcpy(set.filePath, path_.c_str());
    ASSERT_EQ(lumoLogSetConfiguration(&set), LUMO_RETURN_SUCCESS);
    LumoLogConfiguration got{};
    ASSERT_EQ(lumoLogGetConfiguration(&got), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(got.consoleLevel, 0U);
    EXPECT_EQ(got.fileLevel, level);
    EXPECT_EQ(got.callbackLevel, 4 - level);
    EXPECT_EQ(got.maxFileLines, 100 + level);
    EXPECT_EQ(got.callback, &receive);
    EXPECT_EQ(got.filePath, path_);
  }
}

TEST_F(LogConfigurationTest, ALevelTakesItsLinesAndAllGraverOnes) {
  const rusk::LogLevel least[] = {rusk::LogLevel::kFatal, rusk::LogLevel::kFatal, rusk::LogLevel::kError,
                                  rusk::LogLevel::kWarn, rusk::LogLevel::kInfo};
  for (unsigned level = 0; level <= 4; ++level) {
    LumoLogConfiguration set = former_;
    set.callbackLevel = level;
    set.callback = receive;
    ASSERT_EQ(lumoLibrarySetLogConfiguration(&set), LUMO_RETURN_SUCCESS);
    for (int line = 1; line <= 6; ++line) {
      received.clear();
      RUSK_LOG(kelp::libraryLog().logger, static_cast<rusk::LogLevel>(line)) << "a line";
      const bool taken = level != 0 && line >= static_cast<int>(least[level]);
      EXPECT_EQ(received.find(">> a line ") != std::string::npos, taken) << level << " " << line;
    }
  }
}

TEST_F(LogConfigurationTest, LinesGoToTheFile) {
  LumoLogConfiguration set = former_;
  set.fileLevel = 3;
  std::strcpy(set.filePath, path_.c_str());
  ASSERT_EQ(lumoLibrarySetLogConfiguration(&set), LUMO_RETURN_SUCCESS);
  KELP_LOG(kWarn) << "to the file";
  KELP_LOG(kInfo) << "not to the file";
  std::string line;
  std::ifstream file(path_);
  ASSERT_TRUE(std::getline(file, line));
  EXPECT_NE(line.find(">> to the file "), std::string::npos);
  EXPECT_FALSE(std::getline(file, line));
}

TEST_F(LogConfigurationTest, ALevelOutOfRangeChangesNothing) {
  for (unsigned LumoLogConfiguration::*level :
       {&LumoLogConfiguration::consoleLevel, &LumoLogConfiguration::fileLevel,
        &LumoLogConfiguration::callbackLevel}) {
    for (const unsigned wrong : {5U, 7U, 0xFFFFFFFFU}) {
      LumoLogConfiguration set = former_;
      set.maxFileLines = 1;
      set.*level = wrong;
      EXPECT_EQ(lumoLibrarySetLogConfiguration(&set), LUMO_RETURN_INVALID_ARGUMENT);
    }
  }
  LumoLogConfiguration got{};
  ASSERT_EQ(lumoLibraryGetLogConfiguration(&got), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(got.maxFileLines, 10000U);
}

TEST_F(LogConfigurationTest, APathWithoutTerminatorIsRefused) {
  LumoLogConfiguration set = former_;
  std::memset(set.filePath, 'x', sizeof set.filePath);
  EXPECT_EQ(lumoLibrarySetLogConfiguration(&set), LUMO_RETURN_INVALID_ARGUMENT);
}

TEST_F(LogConfigurationTest, AFileThatCannotBeOpenedIsNotSupported) {
  LumoLogConfiguration set = former_;
  std::strcpy(set.filePath, "/dev/null/a/b.log");
  EXPECT_EQ(lumoLibrarySetLogConfiguration(&set), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(LogConfigurationTest, NullIsRefused) {
  EXPECT_EQ(lumoLibrarySetLogConfiguration(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_EQ(lumoLibraryGetLogConfiguration(nullptr), LUMO_RETURN_INVALID_ARGUMENT);
}

}  // namespace
