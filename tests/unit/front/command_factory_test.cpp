#include "command_factory.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "front_fixture.h"

namespace tolk_test {
namespace {

constexpr const char* kNoLong = "9223372036854775808";

class CommandFactory : public testing::Test {
 protected:
  /// The timer that a command line sets up, or null when it posts its success and nothing else.
  std::shared_ptr<tolk::StartTimerEvent> timerOf(const std::string& command) {
    EXPECT_GT(parse(command).row, 0) << command;
    const auto posted = events.take();
    EXPECT_EQ(posted.size(), 1u) << command;
    if (const auto exit = std::dynamic_pointer_cast<tolk::ExitEvent>(posted.front())) {
      EXPECT_EQ(exit->exitCode, tolk::ExitCode::kSuccess);
      return nullptr;
    }
    return std::dynamic_pointer_cast<tolk::StartTimerEvent>(posted.front());
  }

  std::uint64_t intervalOf(const std::string& command) {
    const auto timer = timerOf(command);
    EXPECT_NE(timer, nullptr) << command;
    return timer ? timer->intervalMs : 0;
  }

  EventCapture events;
};

TEST_F(CommandFactory, OneShotCommandPostsItsSuccessBeforeItRuns) {
  for (const auto* command :
       {"", "-v", "-L", "topo", "mpc -enable", "event -h", "-r 0", "--help-query-gpu"}) {
    EXPECT_EQ(timerOf(command), nullptr) << command;
  }
}

TEST_F(CommandFactory, LoopCapableCommandWithoutIntervalIsAOneShotCommand) {
  for (const auto* command : {"-q", "vgpu", "-es", "-ds", "-pm", "-mm GpuId,Temp", "--query-gpu=index"}) {
    EXPECT_EQ(timerOf(command), nullptr) << command;
  }
}

TEST_F(CommandFactory, LoopCountsInSeconds) {
  for (const auto* command :
       {"-q -l 5", "vgpu -l 5", "-es -l 5", "-ds -l 5", "-pm -l 5", "--query-gpu=index --loop=5"}) {
    EXPECT_EQ(intervalOf(command), 5000u) << command;
  }
}

TEST_F(CommandFactory, MetricsMonitorLoopsByMilliseconds) {
  EXPECT_EQ(intervalOf("-mm GpuId,Temp -l 5"), 5u);
}

TEST_F(CommandFactory, SelectiveQueryLoopsByMillisecondsToo) {
  EXPECT_EQ(intervalOf("--query-gpu=index -lms 250"), 250u);
}

TEST_F(CommandFactory, SecondsWinOverMilliseconds) {
  EXPECT_EQ(intervalOf("--query-gpu=index -l 1 -lms 100"), 1000u);
  EXPECT_EQ(intervalOf("--query-gpu=index -lms 100 -l 1"), 1000u);
}

TEST_F(CommandFactory, LinkOfSablinkIsNoInterval) {
  for (const auto* command : {"sablink -r -l 5", "sablink -e -l 5", "sablink -re -l 5"}) {
    EXPECT_EQ(timerOf(command), nullptr) << command;
  }
  EXPECT_EQ(timerOf(std::string("sablink -e -l ") + kNoLong), nullptr);
}

TEST_F(CommandFactory, QueryOfAGuestLoops) {
  ASSERT_EQ(parseInGuest("-q -l 5").row, 4);
  const auto posted = events.take();
  ASSERT_EQ(posted.size(), 1u);
  EXPECT_EQ(posted.front()->type, tolk::EventType::kStartTimer);
}

TEST_F(CommandFactory, TimerRepeatsTheCommandWithoutEnd) {
  const tolk::CommandFactory factory{.make = tolk::getFn<RowCommand<1>>, .loopUnitMs = 1000};
  const auto command = factory({{"-l", {"1"}}});
  const auto posted = events.take();
  ASSERT_EQ(posted.size(), 1u);
  const auto timer = std::dynamic_pointer_cast<tolk::StartTimerEvent>(posted.front());
  ASSERT_NE(timer, nullptr);
  EXPECT_EQ(timer->remaining, -1);
  ASSERT_NE(timer->repeat, nullptr);
  EXPECT_EQ(timer->repeat->firstStep, command);
}

TEST_F(CommandFactory, SecondsWrapIn64Bits) {
  EXPECT_EQ(static_cast<std::uint32_t>(intervalOf("-q -l 4294968")), 704u);
  EXPECT_EQ(intervalOf("-q -l 9223372036854775807"), 9223372036854775807u * 1000u);
}

TEST_F(CommandFactory, IntervalThatNoLongHoldsThrows) {
  for (const auto* command : {"-q -l ", "vgpu -l ", "-es -l ", "-ds -l ", "-pm -l ", "-mm GpuId,Temp -l ",
                              "--query-gpu=index -l ", "--query-gpu=index -lms "}) {
    EXPECT_THROW(parse(std::string(command) + kNoLong), std::out_of_range) << command;
    EXPECT_TRUE(events.take().empty()) << command;
  }
}

TEST_F(CommandFactory, CommandWithoutAClassIsRefusedWithoutATimer) {
  const tolk::CommandFactory factory{.loopUnitMs = 1000};
  const auto step = std::dynamic_pointer_cast<tolk::CommandError>(factory({{"-l", {"5"}}}));
  ASSERT_NE(step, nullptr);
  EXPECT_EQ(step->message, "Error: not support this command");
  EXPECT_EQ(step->code, tolk::ExitCode::kUnsupported);
  EXPECT_TRUE(events.take().empty());
  EXPECT_THROW(factory({{"-l", {kNoLong}}}), std::out_of_range);
}

TEST_F(CommandFactory, SplittingKeepsTheFirstValueAlone) {
  const tolk::CommandFactory factory{.make = tolk::getFn<RowCommand<1>>, .splitsIds = true};
  factory({{"-i", {"0,12,3"}}});
  EXPECT_EQ(lastMade.options, (tolk::ParsedOptions{{"-i", {"0", "12", "3"}}}));
  factory({});
  EXPECT_TRUE(lastMade.options.empty());
}

}  // namespace
}  // namespace tolk_test
