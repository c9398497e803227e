#include "in_process/lumo_fixture.h"

// The links between GPUs.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using kelp::SablinkState;
using rusk::LogLevel;
using tolk_test::LumoFixture;

/// Two GPUs with four links each; link n of a device is in state states_[n].
class SablinkOperationsTest : public LumoFixture {
 protected:
  SablinkOperationsTest() {
    platform_.answer<kelp::QuerySablinkSpecCmd>(
        kelp::SablinkSpec{.linkCount = 4, .linkSpeed = 200000, .version = 110});
    platform_.answerBy<kelp::QuerySablinkStateCmd>(
        [this](const kelp::DevCuid&, const kelp::QuerySablinkStateCmd& cmd) {
          return states_.at(std::get<0>(cmd.params).link);
        });
  }

  void addLinked(unsigned intId, bool linked = true) {
    addGpu(intId);
    auto desc = describe("uuid-" + std::to_string(intId), addressOf(0x40 + intId));
    desc.kmdFlagB = linked;
    platform_.descOf[intId] = desc;
  }
  void startLinked() {
    addLinked(0);
    addLinked(7);
    mustStart();
    handle_ = deviceOf("uuid-0");
    peer_ = deviceOf("uuid-7");
  }

  std::vector<kelp::Stated<SablinkState>> states_{SablinkState::kDown, SablinkState::kUp,
                                                  SablinkState::kDowngraded, KelpReturn::kBusy};
  LumoDevice* peer_ = nullptr;
  unsigned number_ = 99;
  unsigned other_ = 99;
  unsigned long long wide_ = 99;
};

TEST_F(SablinkOperationsTest, TheLinksOfADevice) {
  startLinked();
  LumoSablinkSpec spec{};
  ASSERT_EQ(lumoDeviceGetSablinkSpec(handle_, &spec), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(spec.linkCount, 4U);
  EXPECT_EQ(spec.linkSpeed, 200000U);
  EXPECT_EQ(spec.version, 110U);
  for (const unsigned link : {0U, 1U, 2U}) {
    EXPECT_EQ(lumoDeviceGetSablinkState(handle_, link, &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, link);
  }
  EXPECT_EQ(lumoDeviceGetSablinkState(handle_, 3, &number_), LUMO_RETURN_BUSY);
  EXPECT_EQ(number_, 2U);
}

TEST_F(SablinkOperationsTest, WithoutTheBitNothingIsAsked) {
  addLinked(0);
  addLinked(1, false);
  mustStart();
  LumoDevice* const linked = device(0);
  LumoDevice* const lone = device(1);
  LumoSablinkSpec spec{};
  LumoSablinkLayout layout{};
  LumoSablinkPath path{};
  LumoSablinkPerfData data{};
  LumoSablinkSerdesStatus serdes{};
  LumoDevice* remote = nullptr;
  const LumoReturn codes[] = {
      lumoDeviceGetSablinkSpec(lone, &spec),
      lumoDeviceGetSablinkState(lone, 1, &number_),
      lumoDeviceGetSablinkCapStatus(lone, 1, 0, &number_),
      lumoDeviceGetSablinkErrorCounter(lone, 1, 0, &wide_),
      lumoDeviceResetSablinkErrorCounter(lone, 1),
      lumoDeviceGetSablinkRemoteDevice(lone, 1, &remote),
      lumoDeviceGetSablinkRemoteLink(lone, 1, &number_),
      lumoDeviceStartSablinkPerf(lone, 1, &number_, &other_),
      lumoDeviceGetSablinkPerfData(lone, 1, 1, &data),
      lumoDeviceStopSablinkPerf(lone, 1, 1, &number_),
      lumoDeviceGetSablinkSerdesStatus(lone, 1, &serdes),
      lumoDeviceCountSablinkLayouts(lone, linked, &number_),
      lumoDeviceCountSablinkLayouts(linked, lone, &number_),
      lumoDeviceGetSablinkLayouts(linked, lone, &layout, 1),
      lumoDeviceCountSablinkShortestPaths(lone, linked, &number_),
      lumoDeviceCountSablinkShortestPaths(linked, lone, &number_),
      lumoDeviceGetSablinkShortestPaths(linked, lone, &path, 1),
  };
  for (const LumoReturn code : codes) {
    EXPECT_EQ(code, LUMO_RETURN_NOT_SUPPORTED);
  }
  EXPECT_FALSE(log_.has("Feat not supported !"));
  EXPECT_EQ(platform_.count("QuerySablinkSpec"), 0U);
}

TEST_F(SablinkOperationsTest, ABitWithoutTheFeatureIsLogged) {
  addGpu(0, DevType::kPhysical, DevArch::kFen1);
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdFlagB = true;
  platform_.descOf[0] = desc;
  mustStart();
  LumoSablinkSpec spec{};
  EXPECT_EQ(lumoDeviceGetSablinkSpec(device(0), &spec), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getSablinkSpec >> Feat not supported ! "));
  EXPECT_EQ(lumoDeviceGetSablinkState(device(0), 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getSablinkState >> Feat not supported ! "));
}

TEST_F(SablinkOperationsTest, ALinkPastTheLastIsAnInvalidArgument) {
  startLinked();
  LumoSablinkPerfData data{};
  LumoSablinkSerdesStatus serdes{};
  LumoDevice* remote = nullptr;
  for (const unsigned link : {4U, ~0U}) {
    const LumoReturn codes[] = {
        lumoDeviceGetSablinkState(handle_, link, &number_),
        lumoDeviceGetSablinkCapStatus(handle_, link, 0, &number_),
        lumoDeviceGetSablinkErrorCounter(handle_, link, 0, &wide_),
        lumoDeviceResetSablinkErrorCounter(handle_, link),
        lumoDeviceGetSablinkRemoteDevice(handle_, link, &remote),
        lumoDeviceGetSablinkRemoteLink(handle_, link, &number_),
        lumoDeviceStartSablinkPerf(handle_, link, &number_, &other_),
        lumoDeviceGetSablinkPerfData(handle_, link, 1, &data),
        lumoDeviceStopSablinkPerf(handle_, link, 1, &number_),
        lumoDeviceGetSablinkSerdesStatus(handle_, link, &serdes),
    };
    for (const LumoReturn code : codes) {
      EXPECT_EQ(code, LUMO_RETURN_INVALID_ARGUMENT);
    }
  }
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(platform_.count("QuerySablinkState"), 0U);
}

TEST_F(SablinkOperationsTest, ALinkThatIsDownHasNoCapability) {
  kelp::QuerySablinkCapStatusParam asked;
  platform_.answerBy<kelp::QuerySablinkCapStatusCmd>(
      [&](const kelp::DevCuid&, const kelp::QuerySablinkCapStatusCmd& cmd) {
        asked = std::get<0>(cmd.params);
        return kelp::Stated<kelp::SablinkCapStatus>(kelp::SablinkCapStatus::kYes);
      });
  startLinked();
  EXPECT_EQ(lumoDeviceGetSablinkCapStatus(handle_, 0, 0, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
  EXPECT_EQ(platform_.count("QuerySablinkCapStatus"), 0U);
  for (const unsigned link : {1U, 2U}) {
    EXPECT_EQ(lumoDeviceGetSablinkCapStatus(handle_, link, 1, &number_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(number_, 1U);
    EXPECT_EQ(asked.link, link);
    EXPECT_EQ(asked.capability, 1U);
  }
  EXPECT_EQ(lumoDeviceGetSablinkCapStatus(handle_, 3, 0, &number_), LUMO_RETURN_BUSY)
      << "a state that cannot be read";
}

TEST_F(SablinkOperationsTest, TrafficAndLanesNeedALinkThatIsUp) {
  startLinked();
  LumoSablinkPerfData data{};
  LumoSablinkSerdesStatus serdes{};
  const std::pair<unsigned, LumoReturn> rows[] = {{0, LUMO_RETURN_NOT_FOUND}, {3, LUMO_RETURN_BUSY}};
  for (const auto& [link, code] : rows) {
    EXPECT_EQ(lumoDeviceStartSablinkPerf(handle_, link, &number_, &other_), code);
    EXPECT_EQ(lumoDeviceGetSablinkPerfData(handle_, link, 1, &data), code);
    EXPECT_EQ(lumoDeviceStopSablinkPerf(handle_, link, 1, &number_), code);
    EXPECT_EQ(lumoDeviceGetSablinkSerdesStatus(handle_, link, &serdes), code);
  }
}

TEST_F(SablinkOperationsTest, TrafficIsMeasuredBetweenStartAndStop) {
  std::vector<unsigned> numbers;
  platform_.answer<kelp::StartSablinkPerfCmd>(kelp::SablinkPerfStart{.sessionId = 42, .actualInterval = 100});
  platform_.answerBy<kelp::QuerySablinkPerfDataCmd>(
      [&](const kelp::DevCuid&, const kelp::QuerySablinkPerfDataCmd& cmd) {
        numbers.push_back(std::get<0>(cmd.params).link);
        numbers.push_back(std::get<0>(cmd.params).sessionId);
        return kelp::Stated<kelp::SablinkPerfData>(
            {.rxBytes = 1, .txBytes = 2, .rxRate = 3, .txRate = 4, .samples = 5});
      });
  platform_.answerBy<kelp::StopSablinkPerfCmd>(
      [&](const kelp::DevCuid&, const kelp::StopSablinkPerfCmd& cmd) {
        numbers.push_back(std::get<0>(cmd.params).link);
        numbers.push_back(std::get<0>(cmd.params).sessionId);
        return kelp::Stated<kelp::SablinkPerfStop>({.samples = 6});
      });
  startLinked();
  EXPECT_EQ(lumoDeviceStartSablinkPerf(handle_, 1, &number_, &other_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 42U);
  EXPECT_EQ(other_, 100U);
  LumoSablinkPerfData data{};
  EXPECT_EQ(lumoDeviceGetSablinkPerfData(handle_, 1, 42, &data), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data.rxBytes, 1U);
  EXPECT_EQ(data.txBytes, 2U);
  EXPECT_EQ(data.rxRate, 3U);
  EXPECT_EQ(data.txRate, 4U);
  EXPECT_EQ(data.samples, 5U);
  EXPECT_EQ(lumoDeviceStopSablinkPerf(handle_, 1, 42, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 6U);
  EXPECT_EQ(numbers, (std::vector<unsigned>{1, 42, 1, 42}));
}

TEST_F(SablinkOperationsTest, NoMoreLanesThanTheRecordHolds) {
  kelp::SablinkSerdesStatus status;
  status.laneCount = 200;
  status.lanes[3] = {.state = 2, .eyeWidth = 300, .eyeHeight = 50, .bitErrors = 7};
  platform_.answer<kelp::QuerySablinkSerdesStatusCmd>(status);
  startLinked();
  LumoSablinkSerdesStatus serdes{};
  ASSERT_EQ(lumoDeviceGetSablinkSerdesStatus(handle_, 1, &serdes), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(serdes.laneCount, 4U);
  EXPECT_EQ(serdes.lanes[3].state, 2U);
  EXPECT_EQ(serdes.lanes[3].eyeWidth, 300U);
  EXPECT_EQ(serdes.lanes[3].eyeHeight, 50U);
  EXPECT_EQ(serdes.lanes[3].bitErrors, 7U);
}

TEST_F(SablinkOperationsTest, ErrorCountersDoNotAskForTheState) {
  kelp::QuerySablinkErrCounterParam asked;
  platform_.answerBy<kelp::QuerySablinkErrCounterCmd>(
      [&](const kelp::DevCuid&, const kelp::QuerySablinkErrCounterCmd& cmd) {
        asked = std::get<0>(cmd.params);
        return kelp::Stated<unsigned long>(77);
      });
  unsigned reset = 99;
  platform_.answerBy<kelp::ResetSablinkErrCounterCmd>(
      [&](const kelp::DevCuid&, const kelp::ResetSablinkErrCounterCmd& cmd) {
        reset = std::get<0>(cmd.params);
        return kelp::Stated<int>(0);
      });
  startLinked();
  EXPECT_EQ(lumoDeviceGetSablinkErrorCounter(handle_, 0, 5, &wide_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(wide_, 77U);
  EXPECT_EQ(asked.link, 0U);
  EXPECT_EQ(asked.kind, 5U);
  EXPECT_EQ(lumoDeviceResetSablinkErrorCounter(handle_, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(reset, 3U);
  EXPECT_EQ(platform_.count("QuerySablinkState"), 0U);
}

TEST_F(SablinkOperationsTest, TheRemoteDeviceIsFoundByItsNumber) {
  platform_.answerBy<kelp::QuerySablinkRemoteDevCmd>(
      [](const kelp::DevCuid&, const kelp::QuerySablinkRemoteDevCmd& cmd) {
        const unsigned link = std::get<0>(cmd.params).link;
        return kelp::Stated<kelp::SablinkRemoteDevInfo>({.link = 3, .miscId = link == 0 ? 7U : 99U});
      });
  startLinked();
  LumoDevice* remote = nullptr;
  EXPECT_EQ(lumoDeviceGetSablinkRemoteDevice(handle_, 0, &remote), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(remote, peer_);
  EXPECT_EQ(lumoDeviceGetSablinkRemoteLink(handle_, 0, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 3U);
  EXPECT_EQ(lumoDeviceGetSablinkRemoteDevice(handle_, 1, &remote), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(remote, peer_);
}

TEST_F(SablinkOperationsTest, LayoutsAreThoseToThePeersNumber) {
  platform_.answerBy<kelp::QuerySablinkLayoutsCmd>(
      [](const kelp::DevCuid&, const kelp::QuerySablinkLayoutsCmd& cmd) {
        const unsigned peer = std::get<0>(cmd.params).peer;
        return kelp::Stated<std::vector<kelp::SablinkLayout>>({{0, peer}, {1, peer + 1}});
      });
  startLinked();
  EXPECT_EQ(lumoDeviceCountSablinkLayouts(handle_, peer_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  LumoSablinkLayout layouts[3] = {{9, 9}, {9, 9}, {9, 9}};
  EXPECT_EQ(lumoDeviceGetSablinkLayouts(handle_, peer_, layouts, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(layouts[0].localPort, 9U);
  EXPECT_EQ(lumoDeviceGetSablinkLayouts(handle_, peer_, layouts, 3), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(layouts[1].localPort, 1U);
  EXPECT_EQ(layouts[1].remotePort, 8U);
  EXPECT_EQ(layouts[2].remotePort, 0U);
}

TEST_F(SablinkOperationsTest, PathsAreRowsOfDevices) {
  platform_.answer<kelp::QuerySablinkShortestPathsCmd>(
      std::vector<kelp::SablinkPath>{{.miscIds = {0, 7}}, {.miscIds = {0, 7, 0}}});
  startLinked();
  EXPECT_EQ(lumoDeviceCountSablinkShortestPaths(handle_, peer_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  LumoSablinkPath paths[2] = {};
  EXPECT_EQ(lumoDeviceGetSablinkShortestPaths(handle_, peer_, paths, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(paths[0].deviceCount, 0U);
  ASSERT_EQ(lumoDeviceGetSablinkShortestPaths(handle_, peer_, paths, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(paths[0].deviceCount, 2U);
  EXPECT_EQ(paths[0].devices[0], handle_);
  EXPECT_EQ(paths[0].devices[1], peer_);
  EXPECT_EQ(paths[0].devices[2], nullptr);
  EXPECT_EQ(paths[1].deviceCount, 3U);
}

TEST_F(SablinkOperationsTest, APathOverAnUnknownDeviceIsNotFound) {
  platform_.answer<kelp::QuerySablinkShortestPathsCmd>(
      std::vector<kelp::SablinkPath>{{.miscIds = {0, 55, 7}}});
  startLinked();
  LumoSablinkPath path{};
  EXPECT_EQ(lumoDeviceGetSablinkShortestPaths(handle_, peer_, &path, 1), LUMO_RETURN_NOT_FOUND);
  EXPECT_EQ(path.deviceCount, 0U);
}

TEST_F(SablinkOperationsTest, APathThatIsTooLongIsCutToItsRecord) {
  platform_.answer<kelp::QuerySablinkShortestPathsCmd>(
      std::vector<kelp::SablinkPath>{{.miscIds = std::vector<std::uint32_t>(40, 7)}});
  startLinked();
  LumoSablinkPath path{};
  ASSERT_EQ(lumoDeviceGetSablinkShortestPaths(handle_, peer_, &path, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(path.deviceCount, 24U);
  EXPECT_EQ(path.devices[23], peer_);
}

}  // namespace
