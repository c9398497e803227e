#include "controller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>

#include "driver_mode.h"
#include "front_fixture.h"
#include "thread_refusal.h"

namespace tolk_test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

/// A step that calls a function, whose result is the next step.
class CallStep : public tolk::Step {
 public:
  using Function = std::function<std::shared_ptr<tolk::Step>()>;
  explicit CallStep(Function function) : function_(std::move(function)) {}
  std::shared_ptr<tolk::Step> work() override { return function_(); }

 private:
  Function function_;
};

std::shared_ptr<tolk::Step> stepOf(CallStep::Function function) {
  return std::make_shared<CallStep>(std::move(function));
}

auto repeatOf(CallStep::Function function) {
  return std::make_shared<tolk::RepeatPipeLineEvent>(stepOf(std::move(function)));
}

auto exitWith(int code) {
  return std::make_shared<tolk::ExitEvent>(static_cast<tolk::ExitCode>(code));
}

/// A controller whose worker waits until all events of a test are on the queue.
class GatedController {
 public:
  GatedController() {
    tolk::postEvent(repeatOf([this] {
      gate_.wait(false);
      return nullptr;
    }));
  }

  /// Handles what was posted; the exit status.
  int run() {
    EXPECT_EQ(controller_.start(), 0);
    gate_ = true;
    gate_.notify_one();
    controller_.join();
    return static_cast<int>(controller_.exitCode());
  }

 private:
  tolk::Controller controller_;
  std::atomic<bool> gate_ = false;
};

TEST(Controller, StoresItsQueueAsTheGlobalOne) {
  tolk::Controller first;
  const auto queue = tolk::globalEventQueue();
  ASSERT_NE(queue, nullptr);
  tolk::Controller second;
  EXPECT_NE(tolk::globalEventQueue(), queue);
}

TEST(Controller, DoesNotStartWithoutAThread) {
  const ThreadRefusal refusal;
  tolk::Controller controller;
  EXPECT_EQ(controller.start(), 1);
}

TEST(Controller, LastOfTwoExitEventsDecides) {
  {
    GatedController controller;
    tolk::postEvent(exitWith(0));
    tolk::postEvent(exitWith(5));
    EXPECT_EQ(controller.run(), 5);
  }
  GatedController controller;
  tolk::postEvent(exitWith(5));
  tolk::postEvent(exitWith(0));
  EXPECT_EQ(controller.run(), 0);
}

TEST(Controller, EventsBehindAnExitEventAreDroppedUnlessTheyExitToo) {
  GatedController controller;
  bool ran = false;
  tolk::postEvent(exitWith(0));
  tolk::postEvent(repeatOf([&ran] {
    ran = true;
    return nullptr;
  }));
  tolk::postEvent(exitWith(4));
  tolk::postEvent(std::make_shared<tolk::InputCmdEvent>("-v "));
  OutputCapture output;
  EXPECT_EQ(controller.run(), 4);
  EXPECT_FALSE(ran);
  EXPECT_EQ(output.text(), "");
  EXPECT_TRUE(tolk::globalEventQueue()->empty());
}

TEST(Controller, UnknownEventCountsAsHandled) {
  GatedController controller;
  tolk::postEvent(std::make_shared<tolk::EventBase>(static_cast<tolk::EventType>(9)));
  tolk::postEvent(std::make_shared<tolk::EventBase>(static_cast<tolk::EventType>(-1)));
  tolk::postEvent(exitWith(3));
  EXPECT_EQ(controller.run(), 3);
}

TEST(Controller, RunsAChainUntilAStepHasNoSuccessor) {
  GatedController controller;
  std::string order;
  tolk::postEvent(repeatOf([&order] {
    order += "1";
    return stepOf([&order] {
      order += "2";
      return nullptr;
    });
  }));
  tolk::postEvent(exitWith(0));
  EXPECT_EQ(controller.run(), 0);
  EXPECT_EQ(order, "12");
}

TEST(Controller, FailureOverridesTheSuccessThatWasPostedBefore) {
  GatedController controller;
  OutputCapture output;
  tolk::postEvent(repeatOf([] {
    tolk::postEvent(exitWith(0));
    return tolk::commandError("Error: failed to find GPU devices", tolk::ExitCode::kEnumerationFailed);
  }));
  EXPECT_EQ(controller.run(), 4);
  EXPECT_EQ(output.text(), "Error: failed to find GPU devices\n");
}

TEST(Controller, RunsACommandLine) {
  tolk::Controller controller;
  OutputCapture output;
  ASSERT_EQ(controller.start(), 0);
  controller.input("-v ");
  controller.join();
  EXPECT_EQ(static_cast<int>(controller.exitCode()), 0);
  EXPECT_EQ(output.text(), "orvane-tolk version : 2.4.0\n");
}

TEST(Controller, ParserErrorEndsWithOne) {
  tolk::Controller controller;
  OutputCapture output;
  ASSERT_EQ(controller.start(), 0);
  controller.input("foo ");
  controller.join();
  EXPECT_EQ(static_cast<int>(controller.exitCode()), 1);
  EXPECT_EQ(output.text(), "Error: input is unknow. Please run 'orvane-tolk -h' for help.\n");
}

TEST(Controller, StartIsNotChargedASleepOfThePollInterval) {
  auto fastest = Clock::duration::max();
  for (int attempt = 0; attempt < 20; ++attempt) {
    tolk::Controller controller;
    const auto start = Clock::now();
    ASSERT_EQ(controller.start(), 0);
    fastest = std::min(fastest, Clock::now() - start);
    tolk::postEvent(exitWith(0));
    controller.join();
  }
  EXPECT_LT(fastest, milliseconds(10));
}

TEST(Controller, TimerCountsDownAndThenExits) {
  GatedController controller;
  int runs = 0;
  const auto repeat = repeatOf([&runs] {
    ++runs;
    return nullptr;
  });
  const auto start = Clock::now();
  tolk::postEvent(std::make_shared<tolk::StartTimerEvent>(20, 2, repeat));
  EXPECT_EQ(controller.run(), 0);
  EXPECT_EQ(runs, 2);
  EXPECT_GE(Clock::now() - start, milliseconds(3 * 20));
}

TEST(Controller, TimerSleepsTheLow32BitsOfItsInterval) {
  GatedController controller;
  const auto start = Clock::now();
  tolk::postEvent(std::make_shared<tolk::StartTimerEvent>((std::uint64_t{7} << 32) + 5, 0, nullptr));
  EXPECT_EQ(controller.run(), 0);
  EXPECT_GE(Clock::now() - start, milliseconds(5));
}

/// Runs a command of the given steps under "-l" with an interval that a busy machine cannot outlast; the exit status.
class Loop : public testing::Test {
 protected:
  static constexpr milliseconds kInterval{800};

  int run(CallStep::Function work) {
    static CallStep::Function command;
    command = std::move(work);
    const tolk::CommandFactory factory{
        .make = [](tolk::ParsedOptions) -> std::shared_ptr<tolk::Step> { return stepOf(command); },
        .loopUnitMs = 1};
    GatedController controller;
    tolk::postEvent(repeatOf([factory] { return factory({{"-l", {std::to_string(kInterval.count())}}}); }));
    start = Clock::now();
    return controller.run();
  }

  Clock::time_point start;
};

TEST_F(Loop, FirstRunComesBeforeTheFirstSleep) {
  std::vector<Clock::duration> runs;
  OutputCapture output;
  const int status = run([&]() -> std::shared_ptr<tolk::Step> {
    runs.push_back(Clock::now() - start);
    return runs.size() < 3 ? nullptr : tolk::commandError("Error: enough", tolk::ExitCode::kBadArgument);
  });
  EXPECT_EQ(status, 5);
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_LT(runs[0], kInterval);
  EXPECT_GE(runs[1], kInterval);
  EXPECT_GE(runs[2], 2 * kInterval);
}

TEST_F(Loop, PeriodIsTheIntervalAndTheTimeOfOneRun) {
  constexpr milliseconds kRunTime{40};
  std::vector<Clock::duration> runs;
  OutputCapture output;
  run([&]() -> std::shared_ptr<tolk::Step> {
    runs.push_back(Clock::now() - start);
    std::this_thread::sleep_for(kRunTime);
    return runs.size() < 2 ? nullptr : tolk::commandError("Error: enough", tolk::ExitCode::kBadArgument);
  });
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_GE(runs[1] - runs[0], kInterval + kRunTime);
}

TEST_F(Loop, FailureIsToldAtOnceAndEndsTheProcessOneIntervalLater) {
  int runs = 0;
  OutputCapture output;
  Clock::duration told{};
  const int status = run([&] {
    ++runs;
    return stepOf([&] {
      const auto next = tolk::commandError("Error: index is invalid", tolk::ExitCode::kBadArgument)->work();
      told = Clock::now() - start;
      return next;
    });
  });
  const auto ended = Clock::now() - start;
  EXPECT_EQ(status, 5);
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(output.text(), "Error: index is invalid\n");
  EXPECT_LT(told, kInterval);
  EXPECT_GE(ended, kInterval);
}

TEST(PipeLine, AlwaysReturnsZero) {
  EXPECT_EQ(tolk::PipeLine().run(nullptr), 0);
  int runs = 0;
  EXPECT_EQ(tolk::PipeLine().run(stepOf([&runs] {
    ++runs;
    return nullptr;
  })),
            0);
  EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace tolk_test
