#include "call_exchange.h"

// What is sent to and read from the memory of a device, its error correction, its instances and its
// vGPUs. Versions, sizes and offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using tolk_test::CallScript;
using tolk_test::exchange;
using tolk_test::Fields;
using tolk_test::put;
using enum MiscMkisIntfName;

TEST(MemoryRecords, UsageHasNoFourthRegion) {
  const auto usage =
      exchange<kQueryMemUsage>(
          1, 72, {}, {{0, 8, 5UL << 32}, {8, 8, ~0UL}, {16, 8, 3UL << 32}, {24, 8, 0}, {32, 8, ~0UL}})
          .value();
  EXPECT_EQ(usage.total.value(), 5UL << 32);
  EXPECT_EQ(usage.used.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(usage.region[0].value(), 3UL << 32);
  EXPECT_EQ(usage.region[1].value(), 0UL);
  EXPECT_EQ(usage.region[2].state(), KelpReturn::kNotSupported);
  EXPECT_EQ(usage.region[3].state(), KelpReturn::kNotSupported);
}

TEST(MemoryRecords, TemperatureOfNoChannelIsNone) {
  EXPECT_EQ(exchange<kQueryMemoryTemperature>(1, 212, {}, {{0, 4, 61}, {8, 8, 1UL << 63}}).value(), 61U);
  CallScript script(63, 1, 212, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 0, 61);
    put<std::uint64_t>(payload, 8, 0);
    return 0U;
  });
  EXPECT_EQ(script.perform<kQueryMemoryTemperature>().state(), KelpReturn::kNotSupported);
  EXPECT_EQ(script.sent.size(), 1U);
}

TEST(MemoryRecords, SecondTemperatureHasNoMask) {
  EXPECT_EQ(exchange<kQueryMemoryTemperature>(2, 20, {}, {{0, 4, 62}}).value(), 62U);
}

Fields edcOf(std::uint32_t channelCount, const std::function<std::uint64_t(std::size_t)>& counter) {
  Fields reply{{0, 4, channelCount}};
  for (std::size_t i = 0; i < 24; ++i) {
    for (std::size_t kind = 0; kind < 4; ++kind) {
      reply.emplace_back(4 + i * 16 + kind * 4, 4, counter(kind));
    }
  }
  return reply;
}

TEST(MemoryRecords, EdcCountersOfAllChannelsAreAddedUp) {
  const auto counterOfKind = [](std::size_t kind) { return kind + 1; };
  const auto three = exchange<kQueryMemEdc>(1, 404, {}, edcOf(3, counterOfKind)).value();
  EXPECT_EQ(three.readErrors, 3U);
  EXPECT_EQ(three.writeErrors, 6U);
  EXPECT_EQ(three.readRetries, 9U);
  EXPECT_EQ(three.writeRetries, 12U);
  EXPECT_EQ(exchange<kQueryMemEdc>(1, 404, {}, edcOf(0, counterOfKind)).value().readErrors, 0U);
  EXPECT_EQ(exchange<kQueryMemEdc>(1, 404, {}, edcOf(25, counterOfKind)).value().readErrors, 24U)
      << "no more channels than the record holds";
}

TEST(MemoryRecords, EdcSumNeverGetsSmaller) {
  EXPECT_EQ(exchange<kQueryMemEdc>(1, 404, {}, edcOf(2, [](std::size_t) { return 0x80000000; }))
                .value()
                .writeRetries,
            0xFFFFFFFFU);
}

TEST(MemoryRecords, SecondEdcIsTheSumAlready) {
  const auto edc = exchange<kQueryMemEdc>(2, 32, {}, {{0, 4, 1}, {4, 4, 2}, {8, 4, 3}, {12, 4, 4}}).value();
  EXPECT_EQ(edc.readErrors, 1U);
  EXPECT_EQ(edc.writeErrors, 2U);
  EXPECT_EQ(edc.readRetries, 3U);
  EXPECT_EQ(edc.writeRetries, 4U);
}

TEST(EccRecords, RetiredPagesAreAtMostAFewThousandOfACause) {
  const auto counts = exchange<kQueryEccRetiredPagesCnt>(1, 24, {}, {{0, 4, 4096}, {4, 4, 2}}).value();
  EXPECT_EQ(counts.singleBit, 4096U);
  EXPECT_EQ(counts.doubleBit, 2U);
  const auto lies = exchange<kQueryEccRetiredPagesCnt>(1, 24, {}, {{0, 4, 4097}, {4, 4, 0xFFFFFFFF}}).value();
  EXPECT_EQ(lies.singleBit, 4096U);
  EXPECT_EQ(lies.doubleBit, 4096U);
}

TEST(EccRecords, RetiredPageByCauseAndIndex) {
  const auto page =
      exchange<kQueryEccRetiredPagesInfo>(
          1, 56, {{24, 4, 1}, {28, 4, 7}},
          {{0, 8, 9}, {8, 8, 0x2bc01000}, {16, 8, 1763660000}, {36, 4, 1}, {40, 8, 0x123456}, {48, 8, 3}},
          QueryEccPageRetirementInfoParam{.cause = 1, .index = 7})
          .value();
  EXPECT_EQ(page.count, 9UL);
  EXPECT_EQ(page.address, 0x2bc01000UL);
  EXPECT_EQ(page.timestamp, 1763660000UL);
  EXPECT_EQ(page.cause, 1U);
  EXPECT_EQ(page.location, 0x123456UL);
  EXPECT_EQ(page.errorCount, 3UL);
  EXPECT_EQ(exchange<kQueryEccRetiredPagesInfo>(1, 56, {}, {{0, 8, ~0UL}}, QueryEccPageRetirementInfoParam{})
                .value()
                .count,
            4096UL);
}

TEST(EccRecords, PendingPageByIndex) {
  const auto page = exchange<kQueryEccRetiredPagesPendingInfo>(1, 56, {{24, 4, 5}},
                                                               {{0, 8, 6},
                                                                {8, 8, 0x1f3a4000},
                                                                {16, 8, 1763650000},
                                                                {28, 4, 1},
                                                                {32, 8, 0x654321},
                                                                {40, 8, 2},
                                                                {48, 8, 1763660000}},
                                                               QueryEccPendingErrorInfoParam{.index = 5})
                        .value();
  EXPECT_EQ(page.count, 6UL);
  EXPECT_EQ(page.address, 0x1f3a4000UL);
  EXPECT_EQ(page.timestamp, 1763650000UL);
  EXPECT_EQ(page.cause, 1U);
  EXPECT_EQ(page.location, 0x654321UL);
  EXPECT_EQ(page.errorCount, 2UL);
  EXPECT_EQ(page.lastErrorTime, 1763660000UL);
}

TEST(EccRecords, ModeNowAndAfterTheNextReset) {
  const auto mode = exchange<kQueryEccMode>(1, 21, {}, {{0, 4, 0}, {4, 1, 1}}).value();
  EXPECT_EQ(mode.current, EccMode::kOff);
  EXPECT_EQ(mode.pending, EccMode::kOn);
  EXPECT_EQ(exchange<kSetEccMode>(1, 20, {{0, 4, 1}}, {}, EccMode::kOn).value(), 0);
  EXPECT_EQ(exchange<kSetEccMode>(1, 20, {}, {}, EccMode::kOff).value(), 0);
}

TEST(EccRecords, ErrorCounter) {
  EXPECT_EQ(exchange<kQueryEccErr>(0, 36, {{0, 4, 1}, {4, 4, 1}, {8, 4, 1}}, {{12, 8, 5UL << 40}},
                                   QueryEccErrorsParam{.errorType = 1, .counterType = 1, .location = 1})
                .value(),
            5ULL << 40);
  EXPECT_EQ(exchange<kQueryEccErr>(0, 36, {{4, 4, 1}}, {{12, 8, 6}},
                                   QueryEccErrorsParam{.errorType = 0, .counterType = 1, .location = 0})
                .value(),
            6ULL);
  EXPECT_EQ(exchange<kClearEccErr>(0, 20, {{0, 4, 1}}, {}, EccCounterType::kAggregate).value(), 0);
}

TEST(MpcRecords, ConfigurationIsSetById) {
  EXPECT_EQ(exchange<kSetMpcConf>(1, 18, {{0, 2, 7}}, {}, SetMpcConfParam{7}).value(), 0);
}

TEST(MpcRecords, ConfigurationThatFitsNoFieldNeverBecomesAnother) {
  EXPECT_EQ(exchange<kSetMpcConf>(1, 18, {{0, 2, 0xFFFF}}, {}, SetMpcConfParam{65536}).value(), 0);
}

TEST(MpcRecords, ModeIsSwitched) {
  EXPECT_EQ(exchange<kSetMpcSwitch>(1, 17, {{0, 1, 1}}, {}, SetMpcSwitchParam{MpcMode::kOn}).value(), 0);
  EXPECT_EQ(exchange<kSetMpcSwitch>(1, 17, {}, {}, SetMpcSwitchParam{MpcMode::kOff}).value(), 0);
}

TEST(MpcRecords, ConfigurationInForce) {
  EXPECT_EQ(exchange<kQueryMpcConf>(1, 118, {}, {{0, 2, 2}}).value(), 2U);
  EXPECT_EQ(exchange<kQueryMpcConf>(1, 118, {}, {{0, 2, 65535}}).value(), 65535U) << "none is set";
}

TEST(MpcRecords, ProfileNameEndsWithItsField) {
  const auto profile =
      exchange<kQueryMpcProf>(1, 60, {},
                              {{0, 2, 0x0103}, {2, std::string(32, 'P')}, {34, 2, 2}, {36, 8, 1UL << 33}})
          .value();
  EXPECT_EQ(profile.id, 0x0103U);
  EXPECT_EQ(profile.name, std::string(32, 'P'));
  EXPECT_EQ(profile.coreCount, 2U);
  EXPECT_EQ(profile.memory, 1UL << 33);
}

TEST(MpcRecords, ListsAreNoLongerThanTheirRecords) {
  EXPECT_EQ(exchange<kQueryMpcProfList>(1, 1940, {}, {{0, 4, 33}}).value().size(), 32U);
  const auto configurations =
      exchange<kQueryMpcConfList>(1, 3796, {}, {{0, 4, 2}, {38, 4, 33}, {4 + 118 + 34, 4, 0}}).value();
  ASSERT_EQ(configurations.size(), 2U);
  EXPECT_EQ(configurations[0].profileIds.size(), 32U);
  EXPECT_TRUE(configurations[1].profileIds.empty());
  EXPECT_EQ(exchange<kQueryMpcInstList>(1, 86, {}, {{0, 2, 18}}).value().size(), 17U);
}

TEST(VgpuRecords, UtilizationAndMemoryOfTheGuest) {
  EXPECT_EQ(exchange<kQueryVgpuUtil>(1, 24, {{0, 4, 11}}, {{4, 4, 35}}, 11U).value(), 35U);
  const auto memory =
      exchange<kQueryVgpuMemInfo>(1, 36, {{0, 4, 11}}, {{4, 8, 8UL << 30}, {12, 8, 1UL << 30}}, 11U).value();
  EXPECT_EQ(memory.total.value(), 8UL << 30);
  EXPECT_EQ(memory.used.value(), 1UL << 30);
}

TEST(VgpuRecords, MemoryMayNotBeAvailable) {
  const auto memory =
      exchange<kQueryVgpuMemInfo>(1, 36, {{0, 4, 11}}, {{4, 8, ~0UL}, {12, 8, ~0UL}}, 11U).value();
  EXPECT_EQ(memory.total.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(memory.used.state(), KelpReturn::kNotSupported);
}

TEST(VgpuRecords, OverCommit) {
  const auto info =
      exchange<kQueryVgpuOverCommit>(0, 44, {{0, 4, 11}}, {{4, 4, 1}, {8, 4, 2048}}, 11U).value();
  EXPECT_EQ(info.enabled, 1U);
  EXPECT_EQ(info.systemMemory, 2048U);
}

}  // namespace
}  // namespace kelp::linux_
