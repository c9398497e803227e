#include "common_define.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "thread_refusal.h"

namespace tolk {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

enum Status : int { kDone = 0, kRefused = 4 };

class FrontLogCapture final : public rusk::LogTarget {
 public:
  FrontLogCapture() {
    minLevel = rusk::kPassEverything;
    frontLogger().add(this);
  }
  ~FrontLogCapture() { frontLogger().remove(this); }

  bool write(const std::string& line, int level) override {
    lines.emplace_back(level, line);
    return true;
  }
  bool open() override { return true; }

  std::vector<std::pair<int, std::string>> lines;
};

Status slowCall(int* result, milliseconds duration) {
  std::this_thread::sleep_for(duration);
  *result = 7;
  return kDone;
}

TEST(WrapperLumo, ReturnsTheStatusOfTheCall) {
  FrontLogCapture log;
  EXPECT_EQ(wrapperLumo("lumoRefuse", [] { return kRefused; }), kRefused);
  int result = 0;
  EXPECT_EQ(wrapperLumo("lumoSlow", slowCall, &result, milliseconds(0)), kDone);
  EXPECT_EQ(result, 7);
  EXPECT_TRUE(log.lines.empty());
}

TEST(WrapperLumo, RunsTheCallOnAThreadOfItsOwn) {
  std::thread::id caller;
  wrapperLumo("lumoThread", [&caller] {
    caller = std::this_thread::get_id();
    return kDone;
  });
  EXPECT_NE(caller, std::thread::id());
  EXPECT_NE(caller, std::this_thread::get_id());
}

TEST(WrapperLumo, CallWithinTheTimeLimitPassesItsResultThrough) {
  FrontLogCapture log;
  int result = 0;
  EXPECT_EQ(wrapperLumo(milliseconds(5000), "lumoSlow", slowCall, &result, milliseconds(30)), kDone);
  EXPECT_TRUE(log.lines.empty());
}

TEST(WrapperLumo, CallThatTakesTooLongIsLoggedAndStillWaitedFor) {
  FrontLogCapture log;
  int result = 0;
  const auto start = Clock::now();
  const auto status = wrapperLumo(milliseconds(10), "lumoSlow", slowCall, &result, milliseconds(120));
  EXPECT_GE(Clock::now() - start, milliseconds(120));
  EXPECT_EQ(static_cast<int>(status), 11);
  EXPECT_EQ(result, 7);
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0].first, static_cast<int>(rusk::LogLevel::kError));
  const auto& line = log.lines[0].second;
  EXPECT_NE(line.find(" common_define:"), std::string::npos) << line;
  EXPECT_TRUE(line.ends_with(":wrapperLumo >> lumoSlow  timeout ")) << line;
}

TEST(WrapperLumo, CallRunsOnTheCallersThreadWhereNoOtherCanBeHad) {
  const tolk_test::ThreadRefusal refusal;
  std::thread::id caller;
  const auto status = wrapperLumo("lumoThread", [&caller] {
    caller = std::this_thread::get_id();
    return kRefused;
  });
  EXPECT_EQ(status, kRefused);
  EXPECT_EQ(caller, std::this_thread::get_id());
}

TEST(WrapperLumo, TimeLimitIsTenSeconds) {
  EXPECT_EQ(kLumoCallTimeout, milliseconds(10'000));
}

}  // namespace
}  // namespace tolk
