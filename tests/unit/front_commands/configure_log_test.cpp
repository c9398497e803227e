#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "fake_lumo.h"
#include "front_log_capture.h"

namespace tolk {
namespace {

using testing::ElementsAre;
using tolk_test::fakeLumo;

class ConfigureLogTest : public testing::Test {
 protected:
  void SetUp() override { fakeLumo() = {}; }
};

TEST_F(ConfigureLogTest, RepeatFindsTheCallbackSetAndLeavesIt) {
  LumoAccessFactory::configureLog();
  fakeLumo().calls.clear();
  tolk_test::FrontLogCapture log;
  EXPECT_EQ(LumoAccessFactory::configureLog(), 0);
  EXPECT_THAT(fakeLumo().calls, ElementsAre("lumoLogGetConfiguration"));
  EXPECT_THAT(log.lines, ElementsAre("I configureLog >> orvane-tolk version :  2.4.0 "));
}

TEST_F(ConfigureLogTest, AnotherLevelOrCallbackIsReplaced) {
  LumoAccessFactory::configureLog();
  fakeLumo().log.callbackLevel = 0;
  LumoAccessFactory::configureLog();
  EXPECT_EQ(fakeLumo().log.callbackLevel, 4u);
  fakeLumo().log.callback = nullptr;
  LumoAccessFactory::configureLog();
  EXPECT_EQ(fakeLumo().log.callback, logCallBack);
}

}  // namespace
}  // namespace tolk
