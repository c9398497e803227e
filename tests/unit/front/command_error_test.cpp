#include "command_error.h"

#include <gtest/gtest.h>

#include "front_fixture.h"

namespace tolk_test {
namespace {

TEST(CommandError, PrintsOneLineAndPostsItsCode) {
  EventCapture events;
  OutputCapture output;
  const auto step =
      tolk::commandError("Error: failed to find GPU devices", tolk::ExitCode::kEnumerationFailed);
  EXPECT_EQ(step->work(), nullptr);
  EXPECT_EQ(output.text(), "Error: failed to find GPU devices\n");
  const auto posted = events.take();
  ASSERT_EQ(posted.size(), 1u);
  const auto exit = std::dynamic_pointer_cast<tolk::ExitEvent>(posted.front());
  ASSERT_NE(exit, nullptr);
  EXPECT_EQ(exit->exitCode, tolk::ExitCode::kEnumerationFailed);
}

TEST(CommandError, PrintsWithoutAQueueToo) {
  EventCapture events;
  tolk::globalEventQueue() = nullptr;
  OutputCapture output;
  EXPECT_EQ(tolk::commandError("Error: x", tolk::ExitCode::kBadArgument)->work(), nullptr);
  EXPECT_EQ(output.text(), "Error: x\n");
}

TEST(FormatMessage, FillsIn) {
  EXPECT_EQ(tolk::formatMessage("index = %d", -1), "index = -1");
}

TEST(FormatMessage, KeepsTheFirst999Bytes) {
  EXPECT_EQ(tolk::formatMessage("%s", std::string(999, 'a').c_str()), std::string(999, 'a'));
  EXPECT_EQ(tolk::formatMessage("b%s", std::string(2000, 'a').c_str()), "b" + std::string(998, 'a'));
}

}  // namespace
}  // namespace tolk_test
