#include <array>

#include "call_exchange.h"
#include "linux/environment.h"
#include "support/log_capture.h"

// What is sent to and read from a device, its GPU and its board. Versions, sizes and offsets are typed
// from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::CallScript;
using tolk_test::exchange;
using tolk_test::Field;
using tolk_test::Fields;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::put;
using enum MiscMkisIntfName;

TEST(DeviceRecords, StatusOfEitherVersion) {
  const Fields reply{{0, 4, 1},  {4, 4, 2},  {8, 4, 3},  {12, 4, 4},
                     {16, 4, 5}, {20, 4, 6}, {24, 4, 7}, {40, 4, 0xFFFFFFFF}};
  const auto third = exchange<kQueryGpuStatus>(3, 92, {}, reply).value();
  EXPECT_EQ(third.utilization.value(), 1.0F);
  EXPECT_EQ(third.engine3.value(), 5.0F);
  EXPECT_EQ(third.memoryBusy.value(), 6.0F);
  EXPECT_EQ(third.coreMax.value(), 7.0F);
  EXPECT_EQ(third.coreAverage.state(), KelpReturn::kNotSupported);
  const auto second = exchange<kQueryGpuStatus>(2, 92, {}, reply).value();
  EXPECT_EQ(second.engine0.value(), 2.0F);
  EXPECT_EQ(second.coreMax.state(), KelpReturn::kNotSupported);
}

TEST(DeviceRecords, ResetOfTheGpuIsAnEmptyCall) {
  EXPECT_EQ(exchange<kResetGpu>(1, 20, {}, {}).value(), 0);
}

TEST(DeviceRecords, FirstWordOfTheBodyIsNameAndVersion) {
  for (const auto& [interface, version, size, word] :
       std::to_array<std::array<std::uint32_t, 4>>({{29, 1, 20, 0x0001001D}, {67, 0, 20, 0x00000043}})) {
    CallScript script(static_cast<std::uint16_t>(interface), static_cast<std::uint8_t>(version), size,
                      [w = word](std::uint8_t* payload) {
                        EXPECT_EQ(get<std::uint32_t>(payload - 16, 0), w);
                        return 0U;
                      });
    interface == 29 ? static_cast<void>(script.perform<kResetGpu>())
                    : static_cast<void>(script.perform<kQueryPstate>());
    EXPECT_EQ(script.sent.size(), 1U);
  }
}

TEST(DeviceRecords, ResetOfErrorCountsSendsItsMask) {
  EXPECT_EQ(exchange<kResetGpuHwErrorCounts>(1, 24, {{16, 8, 0xF00000000000000F}}, {},
                                             ResetGpuHwErrorCountsParam{0xF00000000000000F})
                .value(),
            0);
}

TEST(DeviceRecords, ResetOfEventMessagesAndOfTheDeviceAreEmptyCalls) {
  EXPECT_EQ(exchange<kResetDeviceEventMsgs>(1, 16, {}, {}).value(), 0);
  EXPECT_EQ(exchange<kResetDevice>(1, 16, {}, {}).value(), 0);
}

TEST(DeviceRecords, Clock) {
  EXPECT_EQ(
      exchange<kQueryClock>(1, 28, {{0, 4, 1001}}, {{4, 8, 5'000'000'000}}, QueryClockParam{1001}).value(),
      5'000'000'000UL);
}

TEST(DeviceRecords, TemperatureMayBeBelowZero) {
  EXPECT_FLOAT_EQ(exchange<kQueryTemper>(1, 24, {{0, 4, 36}}, {{4, 4, static_cast<std::uint32_t>(-1500)}},
                                         QueryTemperParam{36})
                      .value(),
                  -1.5F);
}

TEST(DeviceRecords, PropertiesGiveEveryCoreTheSameUnits) {
  const auto spec =
      exchange<kQueryGpuCap>(1, 12, {}, {{0, 1, 3}, {1, 1, 2}, {2, 1, 128}, {3, 2, 1800}}).value();
  EXPECT_EQ(spec.coreCount.value(), 3U);
  EXPECT_EQ(spec.clusterCount.value(), 2U);
  EXPECT_EQ(spec.unitsPerCore.value(), (std::vector<unsigned int>{128, 128, 128}));
  EXPECT_EQ(spec.maxClock.value(), 1'800'000'000UL);
}

TEST(DeviceRecords, PropertiesMayNotKnowTheClock) {
  const auto spec = exchange<kQueryGpuCap>(1, 12, {}, {{0, 1, 0}, {1, 1, 0}, {2, 1, 0}, {3, 2, 0}}).value();
  EXPECT_EQ(spec.maxClock.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(spec.unitsPerCore.value().empty());
}

TEST(DeviceRecords, SecondPropertiesHaveUnitsPerCoreAndNoClock) {
  Fields reply;
  for (std::size_t core = 0; core < 16; ++core) {
    reply.emplace_back(2 + core, 1, core == 5 ? 0 : 200 + core);
  }
  const auto spec = exchange<kQueryGpuCap>(2, 44, {}, reply).value();
  ASSERT_EQ(spec.unitsPerCore.value().size(), 16U);
  EXPECT_EQ(spec.unitsPerCore.value()[0], 200U);
  EXPECT_EQ(spec.unitsPerCore.value()[5], 0U);
  EXPECT_EQ(spec.unitsPerCore.value()[15], 215U);
  EXPECT_EQ(spec.maxClock.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.coreCount.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(spec.clusterCount.state(), KelpReturn::kNotSupported);
}

TEST(DeviceRecords, TemperatureLimits) {
  const auto limits =
      exchange<kQueryTemperatureLimitInfo>(1, 32, {}, {{8, 4, 95'500}, {12, 4, 105'000}}).value();
  EXPECT_FLOAT_EQ(limits.slowdown.value(), 95.5F);
  EXPECT_FLOAT_EQ(limits.shutdown.value(), 105.0F);
}

TEST(DeviceRecords, LowestNumberIsALimitThatIsNotAvailable) {
  const auto limits =
      exchange<kQueryTemperatureLimitInfo>(1, 32, {}, {{8, 4, 0x80000000}, {12, 4, 0xFFFFFFFF}}).value();
  EXPECT_EQ(limits.slowdown.state(), KelpReturn::kNotSupported);
  EXPECT_FLOAT_EQ(limits.shutdown.value(), -0.001F) << "all ones is a temperature like any other";
}

TEST(DeviceRecords, PerformanceState) {
  EXPECT_EQ(exchange<kQueryPstate>(0, 20, {}, {{0, 4, 15}}).value(), 15U);
  EXPECT_EQ(exchange<kSetPstate>(0, 20, {{0, 4, 12}}, {}, SetPerfStateParam{12}).value(), 0);
}

TEST(DeviceRecords, ThermalSlowdown) {
  const auto slowdown =
      exchange<kQueryThermalSlowdownStatistics>(0, 24, {}, {{0, 4, 3}, {4, 4, 4500}}).value();
  EXPECT_EQ(slowdown.count, 3U);
  EXPECT_EQ(slowdown.totalTime, 4500U);
}

TEST(DeviceRecords, InfoRomTexts) {
  const auto rom =
      exchange<kQueryInfoRom>(1, 256, {}, {{0, std::string(64, 'S')}, {64, std::string("OVT\0", 4)}}).value();
  EXPECT_EQ(rom.serialNumber, std::string(64, 'S'));
  EXPECT_EQ(rom.brand, "OVT");
}

TEST(DeviceRecords, EfuseWindowGoesBothWays) {
  const auto data = exchange<kQueryEfuseData>(1, 152, {{0, 4, 2048}, {4, 4, 1024}},
                                              {{0, 4, 64}, {4, 4, 1025}, {8, 4, 7}, {132, 4, 9}},
                                              QueryEfuseDataParam{.startBit = 2048, .bitCount = 1024})
                        .value();
  EXPECT_EQ(data.startBit, 64U);
  EXPECT_EQ(data.bitCount, 1024U) << "cut to the words that there are";
  ASSERT_EQ(data.words.size(), 32U);
  EXPECT_EQ(data.words.front(), 7U);
  EXPECT_EQ(data.words.back(), 9U);
}

TEST(DeviceRecords, FansAreAtMostSixteen) {
  EXPECT_EQ(exchange<kQueryFanChnlCount>(1, 20, {}, {{0, 4, 0}}).value(), 0U);
  EXPECT_EQ(exchange<kQueryFanChnlCount>(1, 20, {}, {{0, 4, 16}}).value(), 16U);
  EXPECT_EQ(exchange<kQueryFanChnlCount>(1, 20, {}, {{0, 4, 0xFFFFFFFF}}).value(), 16U);
}

TEST(DeviceRecords, FanSpeedByFanAndUnit) {
  EXPECT_EQ(exchange<kQueryFanSpeed>(1, 28, {{16, 4, 2}, {20, 4, 1}}, {{8, 4, 3200}},
                                     QueryFanSpeedParam{.fanIndex = 2, .unit = FanUnit::kRpm})
                .value(),
            3200U);
  EXPECT_EQ(exchange<kQueryFanSpeed>(1, 28, {{16, 4, 0xFFFFFFFF}}, {{8, 4, 40}},
                                     QueryFanSpeedParam{.fanIndex = 0xFFFFFFFF, .unit = FanUnit::kPercent})
                .value(),
            40U);
}

TEST(DeviceRecords, PowerByDomain) {
  EXPECT_EQ(
      exchange<kQueryPower>(1, 24, {{0, 4, 2}}, {{4, 4, 42'125}}, QueryPowerUsageParam{.domain = 2}).value(),
      42'125U);
}

TEST(DeviceRecords, VoltageInVolts) {
  EXPECT_FLOAT_EQ(
      exchange<kQueryVoltage>(1, 24, {{0, 4, 1}}, {{4, 4, 850}}, QueryVoltageParam{.rail = 1}).value(),
      0.85F);
}

TEST(DeviceRecords, Displays) {
  Fields reply{{0, 2, 2}, {2, 1, 0}, {3, 4, 3840}, {7, 4, 2160}, {11, 4, 5940}};
  reply.insert(reply.end(), {{19, 1, 3}, {20, 4, 0xFFFFFFFF}, {24, 4, 0xFFFFFFFF}, {28, 4, 0xFFFFFFFF}});
  const auto displays = exchange<kQueryDisplayInterfaceSpec>(1, 154, {}, reply).value();
  ASSERT_EQ(displays.size(), 2U);
  EXPECT_EQ(displays[0].type, DispIntfType::kDp);
  EXPECT_EQ(displays[0].hRes.value(), 3840U);
  EXPECT_EQ(displays[0].vRes.value(), 2160U);
  EXPECT_EQ(displays[0].pixelClock.value(), 5940U);
  EXPECT_EQ(displays[1].type, DispIntfType::kHdmi);
  EXPECT_EQ(displays[1].hRes.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(displays[1].vRes.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(displays[1].pixelClock.state(), KelpReturn::kNotSupported);
}

TEST(DeviceRecords, DisplaysAreNoMoreThanTheRecordHolds) {
  EXPECT_EQ(exchange<kQueryDisplayInterfaceSpec>(1, 154, {}, {{0, 2, 9}}).value().size(), 8U);
  EXPECT_EQ(exchange<kQueryDisplayInterfaceSpec>(1, 154, {}, {{0, 2, 0xFFFF}}).value().size(), 8U);
  EXPECT_TRUE(exchange<kQueryDisplayInterfaceSpec>(1, 154, {}, {{0, 2, 0}}).value().empty());
}

TEST(DeviceRecords, PowerLimitByKind) {
  EXPECT_EQ(
      exchange<kQueryPowerLimit>(0, 24, {{0, 4, 5}}, {{4, 4, 350'000}}, PowerLimitType::kMaximum).value(),
      350'000U);
}

TEST(DeviceRecords, PowerLimitIsSetInEitherVersion) {
  EXPECT_EQ(
      exchange<kSetPowerLimit>(0, 20, {{0, 4, 250'000}}, {}, SetPowerLimitParam{250'000, false}).value(), 0);
  EXPECT_EQ(
      exchange<kSetPowerLimit>(1, 20, {{0, 4, 250'000}}, {}, SetPowerLimitParam{250'000, false}).value(), 0);
  EXPECT_EQ(
      exchange<kSetPowerLimit>(1, 20, {{0, 4, 250'000}, {4, 4, 1}}, {}, SetPowerLimitParam{250'000, true})
          .value(),
      0);
}

TEST(DeviceRecords, PersistentPowerLimitIsNotSentInTheFirstVersion) {
  CallScript script(76, 0, 20, [](std::uint8_t*) { return 0U; });
  EXPECT_EQ(script.perform<kSetPowerLimit>(SetPowerLimitParam{250'000, true}).state(),
            KelpReturn::kNotSupported);
  EXPECT_TRUE(script.sent.empty());
}

/// A driver that has a sample ready at the n-th ask, and one process in it.
struct SampleScript : CallScript {
  explicit SampleScript(std::uint8_t version, std::size_t readyAt = 1)
      : CallScript(30, version, 4856, [this, readyAt](std::uint8_t* payload) {
          put<std::uint32_t>(payload, 32, sent.size() == readyAt ? 1 : 0);
          put<std::uint32_t>(payload, 36, count);
          std::uint8_t* const row = payload + 40;
          put<std::uint32_t>(row, 0, 4711);
          put<std::uint32_t>(row, 4, 1);
          put<std::uint64_t>(row, 8, std::uint64_t{9} << 32);
          put<std::uint32_t>(row, 16, 12);
          put<std::uint32_t>(row, 20, 34);
          put<std::uint32_t>(row, 24, 56);
          put<std::uint32_t>(row, 28, 78);
          return status;
        }) {}

  std::uint32_t phase(std::size_t i) const { return get<std::uint32_t>(sent.at(i).data(), 0); }

  std::uint32_t count = 1;
  std::uint32_t status = 0;
};

TEST(ProcessSample, IsAskedForAndFetched) {
  const auto environment = Environment().getEnvironmentType();
  std::vector<std::uint8_t> ask(4856);
  put<std::uint32_t>(ask.data(), 4, environment.ok() ? static_cast<std::uint32_t>(environment.value()) : 0);
  put<std::uint64_t>(ask.data(), 24, std::uint64_t{7} << 32);
  std::vector<std::uint8_t> fetch = ask;
  put<std::uint32_t>(fetch.data(), 0, 2);
  for (const std::uint8_t version : {1, 2}) {
    SampleScript script(version);
    const auto processes =
        script.perform<kQueryProcGpuUtil>(QueryProcGpuUtilParam{.lastSeen = std::uint64_t{7} << 32});
    EXPECT_EQ(script.sent, (std::vector{ask, fetch})) << "each from a fresh record";
    ASSERT_EQ(processes.value().size(), 1U);
    const ProcessGpuUtil& process = processes.value().at(4711);
    EXPECT_EQ(process.pid, 4711U);
    EXPECT_EQ(process.kind, 1U);
    EXPECT_EQ(process.timestamp, std::uint64_t{9} << 32);
    EXPECT_EQ(process.gpu, 12U);
    EXPECT_EQ(process.memory, 34U);
    EXPECT_EQ(process.encoder, 56U);
    EXPECT_EQ(process.decoder, 78U);
  }
}

TEST(ProcessSample, IsAskedForUpToFiveTimes) {
  SampleScript script(2, 5);
  EXPECT_TRUE(script.perform<kQueryProcGpuUtil>(QueryProcGpuUtilParam{}).ok());
  ASSERT_EQ(script.sent.size(), 6U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(script.phase(i), 0U);
  }
  EXPECT_EQ(script.phase(5), 2U);
}

TEST(ProcessSample, FailsWhenNoneGetsReady) {
  LogCapture log;
  SampleScript script(2, 0);
  EXPECT_EQ(script.perform<kQueryProcGpuUtil>(QueryProcGpuUtilParam{}).state(), KelpReturn::kFailure);
  EXPECT_EQ(script.sent.size(), 5U);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query process gpu utilization, access error is  1 "));
}

TEST(ProcessSample, RefusedAskIsNotRepeated) {
  LogCapture log;
  SampleScript script(1);
  script.status = 7;
  EXPECT_EQ(script.perform<kQueryProcGpuUtil>(QueryProcGpuUtilParam{}).state(), KelpReturn::kBusy);
  EXPECT_EQ(script.sent.size(), 1U);
  EXPECT_EQ(log.count("failed to query process gpu utilization, access error is  14"), 1U);
}

TEST(ProcessSample, HasNoMoreProcessesThanTheRecordHolds) {
  CallScript script(30, 2, 4856, [](std::uint8_t* payload) {
    put<std::uint32_t>(payload, 32, 1);
    put<std::uint32_t>(payload, 36, 81);
    for (std::uint32_t i = 0; i < 80; ++i) {
      put<std::uint32_t>(payload, 40 + i * 60, i + 1);
    }
    return 0U;
  });
  const auto processes = script.perform<kQueryProcGpuUtil>(QueryProcGpuUtilParam{});
  ASSERT_EQ(processes.value().size(), 80U);
  EXPECT_TRUE(processes.value().contains(80));
}

}  // namespace
}  // namespace kelp::linux_
