#include "rusk/log_to_console.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

class LogToConsoleTest : public testing::Test {
 protected:
  LogToConsoleTest() { console.minLevel = rusk::kPassEverything; }

  rusk::LogToConsole console;
};

TEST_F(LogToConsoleTest, WritesLineAndLineEnd) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(console.open());
  EXPECT_TRUE(console.write("one", 1));
  EXPECT_TRUE(console.write("two", 6));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "one\ntwo\n");
}

TEST_F(LogToConsoleTest, DropsLinesBelowItsLevel) {
  testing::internal::CaptureStdout();
  console.minLevel = 4;
  EXPECT_FALSE(console.write("three", 3));
  EXPECT_TRUE(console.write("four", 4));
  console.minLevel = rusk::kPassNothing;
  EXPECT_FALSE(console.write("six", 6));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "four\n");
}

TEST(LogToConsole, PassesNothingUntilItIsGivenALevel) {
  rusk::LogToConsole console;
  testing::internal::CaptureStdout();
  EXPECT_FALSE(console.write("six", 6));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(LogToConsoleTest, FieldWidthOfARendererIsLeftToItsText) {
  testing::internal::CaptureStdout();
  std::cout << std::setw(5);
  console.write("x", 3);
  std::cout << "y" << std::flush;
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "x\n    y");
}

TEST_F(LogToConsoleTest, LinesOfThreadsStayWhole) {
  testing::internal::CaptureStdout();
  std::vector<std::thread> threads;
  for (char letter : {'a', 'b', 'c', 'd'}) {
    threads.emplace_back([this, letter] {
      for (int line = 0; line < 200; ++line) console.write(std::string(50, letter), 3);
    });
  }
  for (auto& thread : threads) thread.join();

  std::istringstream output(testing::internal::GetCapturedStdout());
  int lines = 0;
  for (std::string line; std::getline(output, line); ++lines) {
    ASSERT_FALSE(line.empty());
    ASSERT_EQ(line, std::string(50, line[0]));
  }
  EXPECT_EQ(lines, 800);
}

TEST(LogTarget, HasNoVirtualDestructor) {
  EXPECT_FALSE(std::has_virtual_destructor_v<rusk::LogTarget>);
  EXPECT_FALSE(std::has_virtual_destructor_v<rusk::LogToConsole>);
}

}  // namespace
