#include "in_process/lumo_fixture.h"

// The video engine.

namespace {

using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using kelp::VpuCoreKind;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class VpuOperationsTest : public LumoFixture {
 protected:
  /// Core n is of kind kinds[n] and runs so many sessions.
  void setCores(const std::vector<VpuCoreKind>& kinds, unsigned sessions) {
    std::vector<kelp::VpuCoreSpecData> cores;
    for (const VpuCoreKind kind : kinds) {
      kelp::VpuCoreSpecData& core = cores.emplace_back();
      core.kind = kind;
      core.maxInstances = sessions;
      core.maxClock = 900'000'000U + static_cast<unsigned>(cores.size()) * 1'000'000U;
    }
    platform_.answer<kelp::QueryVpuSpecCmd>(cores);
  }
  void start(DevArch arch = DevArch::kTor1) {
    startWith(DevType::kPhysical, arch);
    ASSERT_EQ(lumoDeviceInitVpu(handle_, &vpu_), LUMO_RETURN_SUCCESS);
  }
  void setStates(std::vector<std::vector<kelp::Stated<kelp::VpuSsInstState>>> states) {
    platform_.answer<kelp::QueryVpuSsStatesCmd>(std::move(states));
  }

  static kelp::Stated<kelp::VpuSsInstState> state(bool active) { return kelp::VpuSsInstState{active}; }

  LumoVpu* vpu_ = nullptr;
  unsigned number_ = 99;
  LumoVpuUtilization utilization_{.total = 99, .encoder = 99, .decoder = 99};
};

using Shares = std::vector<kelp::Stated<float>>;

TEST_F(VpuOperationsTest, UtilizationIsTheMeanOfTheCores) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder, VpuCoreKind::kBoth, VpuCoreKind::kDecoder}, 4);
  platform_.answer<kelp::QueryVpuUtilCmd>(Shares{10.0F, 90.0F, 50.0F, 25.0F});
  start();
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization_.total, 43U) << "175 of four cores";
  EXPECT_EQ(utilization_.encoder, 90U);
  EXPECT_EQ(utilization_.decoder, 17U);
}

TEST_F(VpuOperationsTest, CoresOfTheThirdKindCountForTheTotalAlone) {
  setCores({VpuCoreKind::kBoth, VpuCoreKind::kBoth}, 4);
  platform_.answer<kelp::QueryVpuUtilCmd>(Shares{30.0F, 40.0F});
  start();
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization_.total, 35U);
  EXPECT_EQ(utilization_.encoder, 0U);
  EXPECT_EQ(utilization_.decoder, 0U);
}

TEST_F(VpuOperationsTest, ACoreThatIsOffIsIdle) {
  setCores({VpuCoreKind::kEncoder, VpuCoreKind::kEncoder}, 4);
  platform_.answer<kelp::QueryVpuUtilCmd>(Shares{KelpReturn::kNotSupported, 40.0F});
  start();
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(utilization_.encoder, 20U);
}

TEST_F(VpuOperationsTest, ACoreWithoutAShareEndsTheWalk) {
  setCores({VpuCoreKind::kEncoder, VpuCoreKind::kEncoder}, 4);
  platform_.answer<kelp::QueryVpuUtilCmd>(Shares{40.0F});
  start();
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Failed to get util data for core id  1 "));
  EXPECT_EQ(utilization_.total, 99U);
}

TEST_F(VpuOperationsTest, TheClockIsThatOfTheFirstEncoder) {
  setCores({VpuCoreKind::kBoth, VpuCoreKind::kDecoder, VpuCoreKind::kEncoder}, 4);
  platform_.answer<kelp::QueryVpuClockCmd>(
      std::vector<kelp::Stated<unsigned>>{100'000'000U, 200'000'000U, 300'999'999U});
  start();
  EXPECT_EQ(lumoVpuGetClock(vpu_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 300U);
}

TEST_F(VpuOperationsTest, AClockPastTheListIsLogged) {
  setCores({VpuCoreKind::kBoth, VpuCoreKind::kEncoder}, 4);
  platform_.answer<kelp::QueryVpuClockCmd>(std::vector<kelp::Stated<unsigned>>{100'000'000U});
  start();
  EXPECT_EQ(lumoVpuGetClock(vpu_, &number_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Showcase index oor, index =  1 , vec size =  1 "));
  platform_.answer<kelp::QueryVpuClockCmd>(
      std::vector<kelp::Stated<unsigned>>{100'000'000U, KelpReturn::kNotSupported});
  EXPECT_EQ(lumoVpuGetClock(vpu_, &number_), LUMO_RETURN_NOT_SUPPORTED) << "a core that is off";
  EXPECT_EQ(number_, 99U);
}

TEST_F(VpuOperationsTest, TheMaximumClockIsKnownOfOneModelAlone) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder}, 4);
  for (const bool known : {true, false}) {
    platform_.answer<kelp::QueryDevNameCmd>(std::string(known ? "OVT B230E" : "OVT B230"));
    start(DevArch::kFen1);
    EXPECT_EQ(lumoVpuGetMaxClock(vpu_, &number_), known ? LUMO_RETURN_SUCCESS : LUMO_RETURN_NOT_SUPPORTED);
    EXPECT_EQ(number_, 902U);
    stop();
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getMaxClock >> Feat not supported ! "));
}

TEST_F(VpuOperationsTest, CapacityCountsTheCoresThatDoBoth) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder, VpuCoreKind::kBoth, VpuCoreKind::kDecoder}, 4);
  start();
  unsigned decode = 99;
  EXPECT_EQ(lumoVpuGetCodecCapacity(vpu_, &number_, &decode), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 8U);
  EXPECT_EQ(decode, 12U);
}

TEST_F(VpuOperationsTest, SessionsAreNumberedOverTheCoresOfTheirKind) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder, VpuCoreKind::kDecoder, VpuCoreKind::kBoth}, 2);
  setStates({{state(true), state(false)}, {state(true), state(true)}, {state(false), state(true)}, {}});
  start();
  unsigned states[6] = {9, 9, 9, 9, 9, 9};
  EXPECT_EQ(lumoVpuGetDecoderSessionStates(vpu_, states, 6), LUMO_RETURN_SUCCESS);
  constexpr unsigned kNone = LUMO_NOT_AVAILABLE;
  EXPECT_EQ(std::vector(states, states + 6), (std::vector<unsigned>{1, 0, 0, 1, kNone, kNone}))
      << "padded with all ones";
  EXPECT_EQ(lumoVpuGetDecoderSessionStates(vpu_, states, 3), LUMO_RETURN_SUCCESS) << "and cut";
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, states, 4), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(std::vector(states, states + 4), (std::vector<unsigned>{1, 1, kNone, kNone}));
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, states, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
}

TEST_F(VpuOperationsTest, ASlotThatTheDriverDoesNotStateReadsAllOnes) {
  setCores({VpuCoreKind::kEncoder}, 3);
  setStates({{state(true), KelpReturn::kNotSupported}});
  start();
  unsigned states[3];
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, states, 3), LUMO_RETURN_SUCCESS);
  constexpr unsigned kNone = LUMO_NOT_AVAILABLE;
  EXPECT_EQ(std::vector(states, states + 3), (std::vector<unsigned>{1, kNone, kNone}));
}

TEST_F(VpuOperationsTest, ACoreWithoutStatesIsLogged) {
  setCores({VpuCoreKind::kEncoder, VpuCoreKind::kEncoder}, 2);
  setStates({{state(true), state(true)}});
  start();
  unsigned states[4] = {9, 9, 9, 9};
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, states, 4), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_TRUE(log_.has(LogLevel::kError, "Core index oor, index =  1 , vec size =  1 "));
  EXPECT_EQ(states[0], 9U);
}

TEST_F(VpuOperationsTest, ALyingNumberOfSlotsEndsWithTheRecord) {
  setCores({VpuCoreKind::kEncoder}, ~0U);
  setStates({{state(true)}});
  start();
  std::vector<unsigned> states(40, 9);
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, states.data(), 40), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(states[0], 1U);
  EXPECT_EQ(states[39], LUMO_NOT_AVAILABLE);
  unsigned decode = 99;
  EXPECT_EQ(lumoVpuGetCodecCapacity(vpu_, &number_, &decode), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 36U);
}

TEST_F(VpuOperationsTest, ASessionIsAskedOfItsCore) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder, VpuCoreKind::kDecoder}, 2);
  kelp::QueryVpuSsMetricsParam asked;
  platform_.answerBy<kelp::QueryVpuSsMetricsCmd>(
      [&](const kelp::DevCuid&, const kelp::QueryVpuSsMetricsCmd& cmd) {
        asked = std::get<0>(cmd.params);
        return kelp::Stated<kelp::VpuSsMetrics>({.status = 1,
                                                 .pid = 2,
                                                 .codec = 12,
                                                 .hRes = 1920,
                                                 .vRes = 1080,
                                                 .fps = 60,
                                                 .bitrate = 8000,
                                                 .sessionId = 3});
      });
  start();
  LumoVpuSessionMetrics metrics{};
  ASSERT_EQ(lumoVpuGetDecoderSessionMetrics(vpu_, 3, &metrics), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(asked.coreId, 2U);
  EXPECT_EQ(asked.instance, 1U);
  EXPECT_EQ(metrics.state, 1U);
  EXPECT_EQ(metrics.pid, 2U);
  EXPECT_EQ(metrics.codec, 12U);
  EXPECT_EQ(metrics.hRes, 1920U);
  EXPECT_EQ(metrics.vRes, 1080U);
  EXPECT_EQ(metrics.fps, 60U);
  EXPECT_EQ(metrics.bitrate, 8000U);
  EXPECT_EQ(metrics.sessionId, 3U);
  ASSERT_EQ(lumoVpuGetEncoderSessionMetrics(vpu_, 0, &metrics), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(asked.coreId, 1U);
  EXPECT_EQ(asked.instance, 0U);
}

TEST_F(VpuOperationsTest, ASessionPastTheLastIsAnInvalidArgument) {
  setCores({VpuCoreKind::kDecoder, VpuCoreKind::kEncoder}, 2);
  start();
  LumoVpuSessionMetrics metrics{};
  for (const unsigned session : {2U, ~0U}) {
    EXPECT_EQ(lumoVpuGetEncoderSessionMetrics(vpu_, session, &metrics), LUMO_RETURN_INVALID_ARGUMENT);
    EXPECT_EQ(lumoVpuGetDecoderSessionMetrics(vpu_, session, &metrics), LUMO_RETURN_INVALID_ARGUMENT);
  }
  EXPECT_EQ(platform_.count("QueryVpuSsMetrics"), 0U);
}

TEST_F(VpuOperationsTest, AnEngineWithoutCoresAnswersNothing) {
  setCores({}, 0);
  start();
  unsigned state = 99;
  LumoVpuSessionMetrics metrics{};
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetClock(vpu_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetMaxClock(vpu_, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetCodecCapacity(vpu_, &number_, &state), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetEncoderSessionStates(vpu_, &state, 1), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetDecoderSessionMetrics(vpu_, 0, &metrics), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(log_.count("Condition not match ! "), 6U);
}

TEST_F(VpuOperationsTest, AParentHasNoEngine) {
  startMpc();
  ASSERT_EQ(lumoDeviceInitVpu(parent_, &vpu_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoVpuGetUtilization(vpu_, &utilization_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoVpuGetDecoderSessionStates(vpu_, &number_, 1), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getUtilization >> Feat not supported ! "));
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getDecoderSessionStates >> Feat not supported ! "));
  EXPECT_FALSE(log_.has("Condition not match !"));
}

}  // namespace
