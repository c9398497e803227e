#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "command_access/lumo_access/lumo_access_device.h"
#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {

/// A device with all of its parts, and another one. Failures are those of a call that came back too late,
/// which leaves no trace in the output either.
class LumoAccessTest : public testing::Test {
 protected:
  void SetUp() override { reset(); }

  void reset() {
    tolk_test::fakeLumo() = {};
    log_.lines.clear();
  }

  template <class Value>
  static bool same(const Value& left, const Value& right) {
    if constexpr (requires { left == right; }) {
      return left == right;
    } else {
      return std::memcmp(&left, &right, sizeof left) == 0;
    }
  }
  template <class Value>
  static bool same(const std::vector<Value>& left, const std::vector<Value>& right) {
    return std::ranges::equal(left, right, [](const Value& a, const Value& b) { return same(a, b); });
  }

  static std::string nameOf(const std::string& call) { return call.substr(0, call.find('(')); }

  std::string failureLine(const std::string& method, const std::string& call) {
    return "E " + method + " >> " + nameOf(call) + " () failed, ret =  11 ";
  }

  /// That `run` makes one call and no other, returns its failure and logs it in the name of `method`.
  template <class Run>
  void expectFailure(const char* method, const std::string& call, Run run) {
    tolk_test::fakeLumo().lines.clear();
    tolk_test::fakeLumo().fail(call, {LUMO_RETURN_BUSY});
    log_.lines.clear();
    EXPECT_EQ(run(), LUMO_RETURN_BUSY) << method;
    EXPECT_EQ(tolk_test::fakeLumo().lines.back(), call) << method;
    EXPECT_THAT(log_.lines, testing::ElementsAre(failureLine(method, call)));
  }

  /// That a method makes one call, whose answer is set already, and gives its value on success alone.
  template <class Out, class Run>
  void expectOutput(const char* method, const std::string& call, const Out& before, const Out& after,
                    Run run) {
    ASSERT_FALSE(same(before, after)) << method;
    Out out = before;
    EXPECT_EQ(run(out), LUMO_RETURN_SUCCESS) << method;
    EXPECT_TRUE(same(out, after)) << method;
    EXPECT_THAT(tolk_test::fakeLumo().lines, testing::ElementsAre(call));
    EXPECT_THAT(log_.lines, testing::IsEmpty());

    out = before;
    expectFailure(method, call, [&] { return run(out); });
    EXPECT_TRUE(same(out, before)) << method;
    reset();
  }

  /// The same where one value is handed on as it is.
  template <class Out, class Run>
  void expectValue(const char* method, const std::string& call, const Out& value, Run run) {
    tolk_test::fakeLumo().set(call, value);
    expectOutput(method, call, Out{}, value, run);
  }

  tolk_test::FrontLogCapture log_;
  LumoAccessDevice device_{LumoModuleSet{tolk_test::device(0), tolk_test::handleOf<LumoGpu>(),
                                         tolk_test::handleOf<LumoMemory>(), tolk_test::handleOf<LumoVpu>()}};
  LumoAccessDevice peer_{LumoModuleSet{.device = tolk_test::device(1)}};
};

}  // namespace tolk
