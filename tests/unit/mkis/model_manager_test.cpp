#include "model_manager.h"

#include <gtest/gtest.h>

#include "driver_script.h"
#include "unit/cml/host_tree.h"

namespace kelp {
namespace {

using rusk::LogLevel;
using tolk_test::DriverScript;
using tolk_test::put;

std::string nodePath(std::uint64_t number) {
  return "/dev/ovgpu." + std::to_string(number);
}

DevCuid device(std::uint64_t number) {
  return {.type = DevType::kPhysical, .arch = DevArch::kFen1, .sbdf = number << 16, .intId = number};
}

/// Devices 1, 2 and 3, all of them with a performance state.
class ModelManagerTest : public tolk_test::HostTree {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(HostTree::SetUp());
    for (const std::uint64_t number : {1, 2, 3}) {
      driver_.allowOpen(nodePath(number));
    }
    driver_.on(8, [](std::uint8_t*) { return 0U; });
    driver_.on(67, [](std::uint8_t* payload) {
      put<std::uint32_t>(payload, 0, 7);
      return 0U;
    });
  }

  std::shared_ptr<CoreModel> model(std::uint64_t number) {
    const auto model = manager_.getModel(device(number));
    EXPECT_TRUE(model.ok());
    return model.value();
  }

  DriverScript driver_{{{8, 1, 2}, {67, 0, 0}}};
  ModelManager manager_;
};

TEST_F(ModelManagerTest, ModelIsMadeOnceAndInitialisedOnce) {
  const auto first = model(1);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->getCuid(), device(1));
  EXPECT_TRUE(first->getDesc().ok());
  EXPECT_EQ(model(1), first);
  EXPECT_EQ(driver_.opens(nodePath(1)), 1U);
  EXPECT_EQ(driver_.called(8), 1U);
  EXPECT_NE(model(2), first);
}

TEST_F(ModelManagerTest, FailedModelIsKeptAndItsCommandsAreNotInitialised) {
  driver_.allowOpen(nodePath(1), EBUSY);
  EXPECT_EQ(manager_.getModel(device(1)).state(), KelpReturn::kFailure);
  driver_.allowOpen(nodePath(1));
  const auto kept = model(1);
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->getDesc().state(), KelpReturn::kNotSupported);
  const auto state = kept->exec(QueryPstateCmd());
  EXPECT_EQ(state.state(), KelpReturn::kNotInitialized);
  EXPECT_EQ(state.value(), 0U);
  EXPECT_TRUE(driver_.calls.empty()) << "a second look must not initialise it";
}

TEST_F(ModelManagerTest, CommandGoesToTheDriver) {
  EXPECT_EQ(model(1)->exec(QueryPstateCmd()).value(), 7U);
  EXPECT_EQ(driver_.called(67), 1U);
}

TEST_F(ModelManagerTest, SingleDeviceIsNeitherClosedNorReopened) {
  const auto only = model(1);
  const std::size_t calls = driver_.calls.size();
  manager_.closeOtherModelFile(device(1));
  EXPECT_EQ(only->exec(QueryPstateCmd()).value(), 7U);
  manager_.reinitOtherModelFile(device(1));
  EXPECT_EQ(driver_.calls.size(), calls + 1);
  EXPECT_EQ(driver_.opens(nodePath(1)), 1U);
  EXPECT_FALSE(log_.has("reinit device"));
}

TEST_F(ModelManagerTest, OthersAreClosedAndReopenedOnce) {
  const auto target = model(2);
  const std::shared_ptr<CoreModel> others[] = {model(1), model(3)};
  manager_.closeOtherModelFile(device(2));
  EXPECT_FALSE(driver_.isOpen(nodePath(1)));
  EXPECT_TRUE(driver_.isOpen(nodePath(2)));
  EXPECT_FALSE(driver_.isOpen(nodePath(3)));
  EXPECT_EQ(target->exec(QueryPstateCmd()).value(), 7U);

  manager_.reinitOtherModelFile(device(2));
  EXPECT_EQ(log_.count("reinit device "), 2U);
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> reinit device  1 "));
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> reinit device  3 "));
  EXPECT_EQ(driver_.opens(nodePath(1)), 2U);
  EXPECT_EQ(driver_.opens(nodePath(2)), 1U);
  EXPECT_EQ(driver_.opens(nodePath(3)), 2U);
  for (const auto& other : others) {
    EXPECT_EQ(other->exec(QueryPstateCmd()).value(), 7U);
  }
  EXPECT_EQ(model(1), others[0]) << "the model stays, its access point is new";
  EXPECT_EQ(others[1]->getCuid(), device(3));
}

TEST_F(ModelManagerTest, DeviceThatDoesNotComeBackIsNotInitialised) {
  model(1);
  const auto gone = model(3);
  manager_.closeOtherModelFile(device(1));
  driver_.allowOpen(nodePath(3), ENXIO);
  manager_.reinitOtherModelFile(device(1));
  EXPECT_EQ(gone->exec(QueryPstateCmd()).state(), KelpReturn::kNotInitialized);
  EXPECT_EQ(model(3), gone);
}

}  // namespace
}  // namespace kelp
