#include "in_process/lumo_fixture.h"

// Division of a GPU into instances.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class MpcOperationsTest : public LumoFixture {
 protected:
  MpcOperationsTest() {
    platform_.answer<kelp::QueryMpcProfListCmd>(
        std::vector<kelp::MpcProfile>{{.id = 3, .name = "1c.16g", .coreCount = 1, .memory = 16384},
                                      {.id = 5, .name = "2c.32g", .coreCount = 2, .memory = 32768}});
    platform_.answer<kelp::QueryMpcConfListCmd>(std::vector<kelp::MpcConfiguration>{
        {.id = 1, .name = "2x1c", .profileIds = {3, 3}}, {.id = 4, .name = "1x2c", .profileIds = {5}}});
    platform_.answerBy<kelp::SetMpcSwitchCmd>(
        [this](const kelp::DevCuid& cuid, const kelp::SetMpcSwitchCmd& cmd) {
          steps_ = platform_.othersTouched;
          set_.emplace_back(cuid.intId, static_cast<unsigned>(std::get<0>(cmd.params).mode));
          return kelp::Stated<int>(0);
        });
    platform_.answerBy<kelp::SetMpcConfCmd>(
        [this](const kelp::DevCuid& cuid, const kelp::SetMpcConfCmd& cmd) {
          steps_ = platform_.othersTouched;
          set_.emplace_back(cuid.intId, std::get<0>(cmd.params).configId);
          return kelp::Stated<int>(0);
        });
  }

  void addCapableGpu(unsigned intId) {
    addGpu(intId, DevType::kPhysical, DevArch::kFen2);
    auto desc = describe("uuid-" + std::to_string(intId), addressOf(0x40 + intId));
    desc.kmdFlagA = true;
    platform_.descOf[intId] = desc;
  }

  /// Device and number of every change, and what had happened to the others at the last one.
  std::vector<std::pair<std::uint64_t, unsigned>> set_;
  std::vector<std::string> steps_;
  unsigned number_ = 99;
};

TEST_F(MpcOperationsTest, TheModeIsOnForParentsAndInstances) {
  addCapableGpu(0);
  addGpu(1, DevType::kPhysical, DevArch::kFen2);
  startMpc();
  EXPECT_EQ(lumoDeviceGetMpcMode(parent_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  EXPECT_EQ(lumoDeviceGetMpcMode(instance_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  EXPECT_EQ(lumoDeviceGetMpcMode(deviceOf("uuid-0"), &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
  EXPECT_EQ(lumoDeviceGetMpcMode(deviceOf("uuid-1"), &number_), LUMO_RETURN_NOT_SUPPORTED) << "not capable";
}

TEST_F(MpcOperationsTest, ASwitchOfTheModeFindsTheOtherDevicesClosed) {
  addCapableGpu(0);
  startMpc();
  EXPECT_EQ(lumoDeviceSetMpcMode(deviceOf("uuid-0"), 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoDeviceSetMpcMode(parent_, 0), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(set_, (std::vector<std::pair<std::uint64_t, unsigned>>{{0, 1}, {2, 0}}));
  EXPECT_EQ(steps_, (std::vector<std::string>{"close 0", "reopen 0", "close 2"}));
  EXPECT_EQ(platform_.othersTouched.back(), "reopen 2");
}

TEST_F(MpcOperationsTest, WhatCannotBeDividedIsLeftAlone) {
  addGpu(0, DevType::kPhysical, DevArch::kFen2);
  addGpu(1, DevType::kPhysical, DevArch::kTor1);
  auto desc = describe("uuid-1", addressOf(0x41));
  desc.kmdFlagA = true;
  platform_.descOf[1] = desc;
  startMpc();
  EXPECT_EQ(lumoDeviceSetMpcMode(deviceOf("uuid-0"), 1), LUMO_RETURN_NOT_SUPPORTED) << "not capable";
  EXPECT_EQ(lumoDeviceSetMpcMode(instance_, 0), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_FALSE(log_.has("Feat not supported !"));
  EXPECT_EQ(lumoDeviceSetMpcMode(deviceOf("uuid-1"), 1), LUMO_RETURN_NOT_SUPPORTED) << "no feature";
  EXPECT_TRUE(log_.has(LogLevel::kError, ":setMpcMode >> Feat not supported ! "));
  EXPECT_TRUE(set_.empty());
  EXPECT_TRUE(platform_.othersTouched.empty());
}

TEST_F(MpcOperationsTest, OnlyASupportedConfigurationIsSet) {
  startMpc();
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(parent_, 2), LUMO_RETURN_INVALID_ARGUMENT);
  EXPECT_TRUE(platform_.othersTouched.empty());
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(parent_, 4), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(set_, (std::vector<std::pair<std::uint64_t, unsigned>>{{2, 4}}));
  EXPECT_EQ(steps_, (std::vector<std::string>{"close 2"}));
  EXPECT_EQ(platform_.othersTouched.back(), "reopen 2");
  EXPECT_EQ(lumoDeviceSetMpcConfiguration(instance_, 4), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(MpcOperationsTest, ProfilesAndConfigurationsAreListed) {
  startMpc();
  LumoMpcProfile profiles[2] = {};
  EXPECT_EQ(lumoDeviceCountSupportedMpcProfiles(parent_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  EXPECT_EQ(lumoDeviceGetSupportedMpcProfiles(parent_, profiles, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  ASSERT_EQ(lumoDeviceGetSupportedMpcProfiles(parent_, profiles, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(profiles[1].id, 5U);
  EXPECT_EQ(profiles[1].coreCount, 2U);
  EXPECT_EQ(profiles[1].memory, 32768U);
  EXPECT_STREQ(profiles[1].name, "2c.32g");
  LumoMpcConfiguration configurations[3] = {};
  EXPECT_EQ(lumoDeviceCountSupportedMpcConfigurations(parent_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  ASSERT_EQ(lumoDeviceGetSupportedMpcConfigurations(parent_, configurations, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(configurations[0].id, 1U);
  EXPECT_EQ(configurations[0].profileCount, 2U);
  EXPECT_EQ(configurations[0].profileIds[1], 3U);
  EXPECT_EQ(configurations[0].profileIds[2], 0U);
  EXPECT_STREQ(configurations[0].name, "2x1c");
}

TEST_F(MpcOperationsTest, AConfigurationIsFoundByIdAndName) {
  startMpc();
  LumoMpcConfiguration configuration{};
  EXPECT_EQ(lumoDeviceGetMpcConfiguration(parent_, 4, &configuration), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(configuration.name, "1x2c");
  EXPECT_EQ(lumoDeviceGetMpcConfigurationByName(parent_, "2x1c", &configuration), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(configuration.id, 1U);
  EXPECT_EQ(lumoDeviceGetMpcConfiguration(parent_, 9, &configuration), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(lumoDeviceGetMpcConfigurationByName(parent_, "", &configuration), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(configuration.id, 1U);
}

TEST_F(MpcOperationsTest, ALongConfigurationIsCutToItsRecord) {
  platform_.answer<kelp::QueryMpcConfListCmd>(std::vector<kelp::MpcConfiguration>{
      {.id = 1, .name = std::string(100, 'n'), .profileIds = std::vector<std::uint32_t>(40, 3)}});
  startMpc();
  LumoMpcConfiguration configuration{};
  ASSERT_EQ(lumoDeviceGetMpcConfiguration(parent_, 1, &configuration), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(configuration.profileCount, 32U);
  EXPECT_EQ(configuration.profileIds[31], 3U);
  EXPECT_EQ(std::string(configuration.name), std::string(59, 'n'));
}

TEST_F(MpcOperationsTest, TheListsBelongToTheParent) {
  addCapableGpu(0);
  startMpc();
  LumoMpcProfile profile{};
  LumoMpcConfiguration configuration{};
  LumoDevice* found = nullptr;
  for (LumoDevice* const asked : {deviceOf("uuid-0"), instance_}) {
    EXPECT_EQ(lumoDeviceCountSupportedMpcProfiles(asked, &number_), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetSupportedMpcProfiles(asked, &profile, 1), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceCountSupportedMpcConfigurations(asked, &number_), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetMpcConfiguration(asked, 1, &configuration), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceCountMpcInstances(asked, &number_), LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(lumoDeviceGetMpcInstanceByProfile(asked, 3, &found, 1), LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_EQ(number_, 99U);
}

TEST_F(MpcOperationsTest, InstancesAreFoundByTheirProfile) {
  platform_.answerBy<kelp::QueryMpcProfCmd>([](const kelp::DevCuid& cuid, const kelp::QueryMpcProfCmd&) {
    // The index of the instance stands above the profile.
    kelp::MpcProfile profile;
    profile.id = cuid.intId == 3 ? 0x003 : 0x105;
    return kelp::Stated<kelp::MpcProfile>(profile);
  });
  startMpc();
  EXPECT_EQ(lumoDeviceCountMpcInstanceByProfile(parent_, 5, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 1U);
  LumoDevice* found[2] = {nullptr, nullptr};
  EXPECT_EQ(lumoDeviceGetMpcInstanceByProfile(parent_, 5, found, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(found[0], deviceOf("uuid-10"));
  EXPECT_EQ(found[1], nullptr);
  EXPECT_EQ(lumoDeviceGetMpcInstanceByProfile(parent_, 5, found, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceCountMpcInstanceByProfile(parent_, 0x105, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
  platform_.answer<kelp::QueryMpcProfCmd>(KelpReturn::kAccessFailed);
  EXPECT_EQ(lumoDeviceCountMpcInstanceByProfile(parent_, 5, &number_), LUMO_RETURN_DRIVER_ACCESS_FAILED);
}

}  // namespace
