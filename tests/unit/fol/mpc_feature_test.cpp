#include "objects/mpc_feat_obj.h"

#include "feature_fixture.h"

namespace kelp {
namespace {

using rusk::LogLevel;

class MpcFeatureTest : public tolk_test::FeatureFixture {
 protected:
  const std::shared_ptr<CoreModel>& parent() { return modelOf(DevType::kMpcParent, DevArch::kFen2); }

  void answerConfigurations() {
    platform_.answer<QueryMpcConfListCmd>(
        std::vector<MpcConfiguration>{{.id = 0, .name = "full", .profileIds = {1}},
                                      {.id = 1, .name = "thirds", .profileIds = {3, 3, 3}},
                                      {.id = 2, .name = "pair", .profileIds = {3, 3}}});
  }
};

TEST_F(MpcFeatureTest, AConfigurationIsFoundByItsId) {
  answerConfigurations();
  const MpcFeatObj mpc(parent());
  platform_.asked.clear();
  EXPECT_EQ(mpc.getMpcConfiguration(1).value().name, "thirds");
  EXPECT_EQ(mpc.getMpcConfiguration(1).value().profileIds, (std::vector<std::uint32_t>{3, 3, 3}));
  EXPECT_TRUE(platform_.asked.empty());
  EXPECT_EQ(log_.count("current mpc device supported config id =  0 "), 2U);
  EXPECT_EQ(log_.count("current mpc device supported config id =  1 "), 2U);
  EXPECT_EQ(log_.count("current mpc device supported config id =  2 "), 0U) << "past the match";
}

TEST_F(MpcFeatureTest, AnUnknownIdLogsEachSupportedOneFirst) {
  answerConfigurations();
  const MpcFeatObj mpc(parent());
  log_.lines.clear();
  EXPECT_EQ(mpc.getMpcConfiguration(7).state(), KelpReturn::kNotFound);
  ASSERT_EQ(log_.lines.size(), 4U);
  for (const unsigned int id : {0U, 1U, 2U}) {
    EXPECT_NE(log_.lines[id].second.find("current mpc device supported config id =  " + std::to_string(id)),
              std::string::npos);
  }
  EXPECT_NE(log_.lines[3].second.find("config id =  7 not found. "), std::string::npos);
  EXPECT_EQ(log_.lines[3].first, static_cast<int>(LogLevel::kError));
}

TEST_F(MpcFeatureTest, AConfigurationIsFoundByItsName) {
  answerConfigurations();
  const MpcFeatObj mpc(parent());
  EXPECT_EQ(mpc.getMpcConfigurationByName("pair").value().id, 2U);
  EXPECT_TRUE(log_.has("current mpc device supported config name =  full "));
  EXPECT_EQ(mpc.getMpcConfigurationByName("pai").state(), KelpReturn::kNotFound);
  EXPECT_TRUE(log_.has(LogLevel::kError, "config name =  pai not found. "));
}

TEST_F(MpcFeatureTest, AListThatCouldNotBeReadIsLogged) {
  platform_.answer<QueryMpcConfListCmd>(KelpReturn::kBusy);
  const MpcFeatObj mpc(parent());
  EXPECT_EQ(mpc.getMpcConfiguration(0).state(), KelpReturn::kBusy);
  EXPECT_EQ(mpc.getMpcConfigurationByName("full").state(), KelpReturn::kBusy);
  EXPECT_EQ(log_.count("initSupportConfigsList() error, error value =  14 "), 2U);
}

TEST_F(MpcFeatureTest, OnlyAParentHasConfigurations) {
  answerConfigurations();
  for (const DevType type :
       {DevType::kPhysical, DevType::kMpcInstance, DevType::kMediated, DevType::kGuest}) {
    EXPECT_EQ(MpcFeatObj(modelOf(type, DevArch::kFen2)).getMpcConfiguration(0).state(),
              KelpReturn::kNotSupported);
  }
}

TEST_F(MpcFeatureTest, TheModeFollowsFromTheType) {
  const auto modeOf = [this](DevType type) {
    const Stated<MpcMode> mode = MpcFeatObj(modelOf(type, DevArch::kFen2)).getMode();
    EXPECT_TRUE(mode.ok());
    return mode.value();
  };
  EXPECT_EQ(modeOf(DevType::kPhysical), MpcMode::kOff);
  EXPECT_EQ(modeOf(DevType::kMpcParent), MpcMode::kOn);
  EXPECT_EQ(modeOf(DevType::kMpcInstance), MpcMode::kOn);
  EXPECT_EQ(modeOf(DevType::kMediated), MpcMode::kOff);
  for (const DevType type : {DevType::kUnknown, DevType::kGuest, static_cast<DevType>(6)}) {
    EXPECT_EQ(MpcFeatObj(modelOf(type, DevArch::kFen2)).getMode().state(), KelpReturn::kNotSupported);
  }
}

TEST_F(MpcFeatureTest, WhatIsSetReachesTheDriver) {
  std::vector<unsigned int> sent;
  platform_.answerBy<SetMpcConfCmd>([&](const DevCuid&, const SetMpcConfCmd& cmd) {
    sent.push_back(std::get<0>(cmd.params).configId);
    return Stated<int>(0);
  });
  platform_.answerBy<SetMpcSwitchCmd>([&](const DevCuid&, const SetMpcSwitchCmd& cmd) {
    sent.push_back(100 + static_cast<unsigned int>(std::get<0>(cmd.params).mode));
    return Stated<int>(0);
  });
  const MpcFeatObj mpc(parent());
  EXPECT_TRUE(mpc.setConfiguration(2).ok());
  EXPECT_TRUE(mpc.setMode(MpcMode::kOff).ok());
  EXPECT_TRUE(mpc.setMode(MpcMode::kOn).ok());
  EXPECT_EQ(sent, (std::vector<unsigned int>{2, 100, 101}));
}

}  // namespace
}  // namespace kelp
