#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/environment.h"
#include "old_driver.h"
#include "support/log_capture.h"

// What is sent to and read from a driver of protocol 0, record by record. Versions, numbers, sizes and
// offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using rusk::LogLevel;
using tolk_test::exchangeRecord;
using tolk_test::Fields;
using tolk_test::get;
using tolk_test::LogCapture;
using tolk_test::OldDriver;
using tolk_test::put;
using enum MiscMkisIntfName;

TEST(OldRecords, StatusOfEitherVersion) {
  const Fields reply{{0, 4, 1},  {4, 4, 2},  {8, 4, 3},  {12, 4, 4},
                     {16, 4, 5}, {20, 4, 6}, {24, 4, 7}, {40, 4, ~0U}};
  const auto first = exchangeRecord<kQueryGpuStatus>(0, 0xC0484D05, 72, {}, reply).value();
  EXPECT_EQ(first.utilization.value(), 1.0F);
  EXPECT_EQ(first.engine0.value(), 2.0F);
  EXPECT_EQ(first.engine3.value(), 5.0F);
  EXPECT_EQ(first.memoryBusy.value(), 6.0F);
  EXPECT_EQ(first.coreMax.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(first.coreAverage.state(), KelpReturn::kNotSupported);
  const auto second = exchangeRecord<kQueryGpuStatus>(1, 0xC0584D05, 88, {}, reply).value();
  EXPECT_EQ(second.engine1.value(), 3.0F);
  EXPECT_EQ(second.coreMax.value(), 7.0F);
}

TEST(OldRecords, MemoryHasItsFourthRegionAndTheSystems) {
  const auto usage = exchangeRecord<kQueryMemUsage>(0, 0xC0A04DA6, 160, {},
                                                    {{0, 8, 1UL << 33},
                                                     {8, 8, 2UL << 33},
                                                     {16, 8, 3UL << 33},
                                                     {24, 8, 4UL << 33},
                                                     {32, 8, 5UL << 33},
                                                     {40, 8, 6UL << 33},
                                                     {48, 8, 7UL << 33},
                                                     {56, 8, ~0UL}})
                         .value();
  EXPECT_EQ(usage.total.value(), 1UL << 33);
  EXPECT_EQ(usage.used.value(), 2UL << 33);
  EXPECT_EQ(usage.region[0].value(), 3UL << 33);
  EXPECT_EQ(usage.region[3].value(), 6UL << 33);
  EXPECT_EQ(usage.systemTotal.value(), 7UL << 33);
  EXPECT_EQ(usage.guestReserved.state(), KelpReturn::kNotSupported);
}

template <std::uint32_t Version, std::uint32_t Number, std::size_t Size, std::size_t First, std::size_t Row>
void expectProcesses() {
  const auto row = [](std::size_t i) { return First + Row * i; };
  const auto processes = exchangeRecord<kQueryProcMemState>(Version, Number, Size, {},
                                                            {{0, 4, 2},
                                                             {row(0), 8, 1UL << 34},
                                                             {row(0) + 8, 8, 5},
                                                             {row(0) + 16, 4, 0},
                                                             {row(0) + 20, 4, 100},
                                                             {row(1), 8, 2UL << 34},
                                                             {row(1) + 8, 8, 6},
                                                             {row(1) + 16, 4, 1},
                                                             {row(1) + 20, 4, 200}})
                             .value();
  ASSERT_EQ(processes.size(), 2U);
  EXPECT_EQ(processes.at(200).gpuMemory, 2UL << 34);
  EXPECT_EQ(processes.at(200).systemMemory, 6U);
  EXPECT_EQ(processes.at(200).kind, 1U);
  EXPECT_EQ(processes.at(100).pid, 100U);
}

TEST(OldRecords, ProcessesOfAllVersions) {
  expectProcesses<0, 0xB9884DA7, 14728, 8, 184>();
  expectProcesses<1, 0xBC084DA7, 15368, 8, 192>();
  expectProcesses<2, 0xA3104DA7, 8976, 16, 112>();
}

TEST(OldRecords, ProcessesAreAtMostEighty) {
  Fields reply{{0, 4, ~0U}};
  for (std::size_t i = 0; i < 80; ++i) {
    reply.emplace_back(16 + 112 * i + 20, 4, 1000 + i);
  }
  EXPECT_EQ(exchangeRecord<kQueryProcMemState>(2, 0xA3104DA7, 8976, {}, reply).value().size(), 80U);
}

Fields description(std::uint32_t type) {
  return {{0, 2, 3},  {2, 2, 8},  {4, 8, 0xF0}, {16, 4, type}, {20, 4, 1},
          {24, 4, 0}, {28, 2, 4}, {30, 2, 130}, {32, 2, 2},    {34, 8, 0x1'0041'0200UL}};
}

TEST(OldRecords, DescriptionOfAnInstance) {
  const DevDesc desc = exchangeRecord<kQueryDevDesc>(0, 0x802A4DB2, 42, {}, description(2)).value();
  EXPECT_EQ(desc.miscPath.value(), "/dev/ovgpu.3");
  EXPECT_EQ(desc.cardPath.value(), "/dev/dri/card4");
  EXPECT_EQ(desc.renderPath.value(), "/dev/dri/renderD130");
  EXPECT_EQ(desc.parentMiscId, 2U);
  EXPECT_EQ(desc.sbdf, "0001:41:02.0");
  EXPECT_TRUE(desc.kmdFlagA.value());
  EXPECT_FALSE(desc.kmdFlagB.value());
  EXPECT_EQ(desc.kmdValue32.value(), 8U);
  EXPECT_EQ(desc.kmdValue64.value(), 0xF0U);
  EXPECT_EQ(desc.ionPath.state(), KelpReturn::kNotSupported) << "the record has no such field";
}

TEST(OldRecords, DescriptionOfAParentHasNoDrmNodes) {
  const DevDesc desc = exchangeRecord<kQueryDevDesc>(0, 0x802A4DB2, 42, {}, description(1)).value();
  EXPECT_EQ(desc.cardPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.renderPath.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(desc.parentMiscId, 0U);
}

TEST(OldRecords, MpcProfiles) {
  const std::size_t last = 4 + 50 * 31;
  const auto profiles = exchangeRecord<kQueryMpcProfList>(0, 0x86444DB3, 1604, {},
                                                          {{0, 4, 4000},
                                                           {last, 2, 7},
                                                           {last + 2, std::string(32, 'p')},
                                                           {last + 34, 2, 4},
                                                           {last + 36, 8, 5UL << 32}})
                            .value();
  ASSERT_EQ(profiles.size(), 32U);
  EXPECT_EQ(profiles[31].id, 7U);
  EXPECT_EQ(profiles[31].name, std::string(32, 'p'));
  EXPECT_EQ(profiles[31].coreCount, 4U);
  EXPECT_EQ(profiles[31].memory, 5UL << 32);
}

TEST(OldRecords, MpcConfigurations) {
  const std::size_t second = 4 + 102;
  const auto list = exchangeRecord<kQueryMpcConfList>(0, 0x8CC44DB4, 3268, {},
                                                      {{0, 4, 2},
                                                       {4 + 34, 4, 4000},
                                                       {second, 2, 9},
                                                       {second + 2, std::string("two\0", 4)},
                                                       {second + 34, 4, 2},
                                                       {second + 38, 2, 3},
                                                       {second + 40, 2, 4}})
                        .value();
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].profileIds.size(), 32U);
  EXPECT_EQ(list[1].id, 9U);
  EXPECT_EQ(list[1].name, "two");
  EXPECT_EQ(list[1].profileIds, (std::vector<std::uint32_t>{3, 4}));
}

TEST(OldRecords, MpcInstances) {
  const auto list = exchangeRecord<kQueryMpcInstList>(
                        0, 0x80464DB5, 70, {}, {{0, 2, 400}, {2 + 4 * 16, 2, 300}, {4 + 4 * 16, 2, 16}})
                        .value();
  ASSERT_EQ(list.size(), 17U);
  EXPECT_EQ(list[16].miscId, 300U);
  EXPECT_EQ(list[16].instanceId, 16U);
}

TEST(OldRecords, MpcOfAnInstance) {
  EXPECT_EQ(exchangeRecord<kQueryMpcParent>(0, 0x80024DB7, 2, {}, {{0, 2, 300}}).value(), 300U);
  const auto profile =
      exchangeRecord<kQueryMpcProf>(
          0, 0x80324DB8, 50, {}, {{0, 2, 0x0103}, {2, std::string("half\0", 5)}, {34, 2, 4}, {36, 8, 8192}})
          .value();
  EXPECT_EQ(profile.id, 0x0103U);
  EXPECT_EQ(profile.name, "half");
  EXPECT_EQ(profile.coreCount, 4U);
  EXPECT_EQ(profile.memory, 8192U);
}

TEST(OldRecords, MpcSettings) {
  EXPECT_EQ(exchangeRecord<kQueryMpcConf>(0, 0x80024DBA, 2, {}, {{0, 2, 65535}}).value(), 65535U);
  EXPECT_EQ(exchangeRecord<kSetMpcConf>(0, 0x40024DB6, 2, {{0, 2, 513}}, {}, SetMpcConfParam{513}).value(),
            0);
  EXPECT_EQ(exchangeRecord<kSetMpcConf>(0, 0x40024DB6, 2, {{0, 2, 65535}}, {}, SetMpcConfParam{65536 + 513})
                .value(),
            0)
      << "never another's number";
  EXPECT_EQ(exchangeRecord<kSetMpcSwitch>(0, 0x40014DB9, 1, {{0, 1, 1}}, {}, SetMpcSwitchParam{MpcMode::kOn})
                .value(),
            0);
}

TEST(OldRecords, Identity) {
  const auto rom = exchangeRecord<kQueryInfoRom>(0, 0x80804DAD, 128, {},
                                                 {{0, std::string(64, 'n')}, {64, std::string("OVT\0", 4)}})
                       .value();
  EXPECT_EQ(rom.serialNumber, std::string(64, 'n'));
  EXPECT_EQ(rom.brand, "OVT");
}

TEST(OldRecords, Resets) {
  EXPECT_EQ(exchangeRecord<kResetGpu>(0, 0x40044DBB, 4, {}, {}).value(), 0);
  EXPECT_EQ(exchangeRecord<kResetDevice>(0, 0x40044DEA, 4, {}, {}).value(), 0);
  EXPECT_EQ(exchangeRecord<kResetDeviceEventMsgs>(0, 0x40104DE1, 16, {}, {}).value(), 0);
  EXPECT_EQ(exchangeRecord<kResetGpuHwErrorCounts>(0, 0x40084DBD, 8, {{0, 8, 0xF00000000000000F}}, {},
                                                   ResetGpuHwErrorCountsParam{0xF00000000000000F})
                .value(),
            0);
}

TEST(OldRecords, VgpuValues) {
  EXPECT_EQ(exchangeRecord<kQueryVgpuUtil>(0, 0x80084DD0, 8, {{0, 4, 6}}, {{4, 4, 55}}, 6U).value(), 55U);
  const auto memory = exchangeRecord<kQueryVgpuMemInfo>(0, 0x80144DD1, 20, {{0, 4, 6}},
                                                        {{4, 8, 1UL << 34}, {12, 8, ~0UL}}, 6U)
                          .value();
  EXPECT_EQ(memory.total.value(), 1UL << 34);
  EXPECT_EQ(memory.used.state(), KelpReturn::kNotSupported);
}

TEST(OldRecords, RetiredPages) {
  const auto count =
      exchangeRecord<kQueryEccRetiredPagesCnt>(0, 0x80084DE2, 8, {}, {{0, 4, 4096}, {4, 4, 4097}}).value();
  EXPECT_EQ(count.singleBit, 4096U);
  EXPECT_EQ(count.doubleBit, 4096U);
  const auto page =
      exchangeRecord<kQueryEccRetiredPagesInfo>(
          0, 0x80384DE3, 56, {{24, 4, 1}, {28, 4, 17}},
          {{0, 8, 5000}, {8, 8, 1UL << 36}, {16, 8, 1700000000}, {36, 4, 1}, {40, 8, 2UL << 36}, {48, 8, 3}},
          QueryEccPageRetirementInfoParam{.cause = 1, .index = 17})
          .value();
  EXPECT_EQ(page.count, 4096U);
  EXPECT_EQ(page.address, 1UL << 36);
  EXPECT_EQ(page.timestamp, 1700000000UL);
  EXPECT_EQ(page.cause, 1U);
  EXPECT_EQ(page.location, 2UL << 36);
  EXPECT_EQ(page.errorCount, 3U);
  const auto pending = exchangeRecord<kQueryEccRetiredPagesPendingInfo>(
                           0, 0x80384DE4, 56, {{24, 4, 17}},
                           {{0, 8, 2}, {8, 8, 4}, {16, 8, 5}, {28, 4, 1}, {32, 8, 6}, {40, 8, 7}, {48, 8, 8}},
                           QueryEccPendingErrorInfoParam{17})
                           .value();
  EXPECT_EQ(pending.count, 2U);
  EXPECT_EQ(pending.address, 4U);
  EXPECT_EQ(pending.timestamp, 5U);
  EXPECT_EQ(pending.cause, 1U);
  EXPECT_EQ(pending.location, 6U);
  EXPECT_EQ(pending.errorCount, 7U);
  EXPECT_EQ(pending.lastErrorTime, 8U);
}

TEST(OldRecords, EccMode) {
  const auto mode = exchangeRecord<kQueryEccMode>(0, 0x80054DE5, 5, {}, {{0, 4, 0}, {4, 1, 1}}).value();
  EXPECT_EQ(mode.current, EccMode::kOff);
  EXPECT_EQ(mode.pending, EccMode::kOn);
  EXPECT_EQ(exchangeRecord<kSetEccMode>(0, 0x40044DE6, 4, {{0, 4, 1}}, {}, EccMode::kOn).value(), 0);
}

/// A driver that is asked for samples of processes and has one after some asks.
struct Sampling {
  explicit Sampling(int asksUntilReady) {
    driver.answer(0x8CB04DBC, [this, asksUntilReady](std::uint8_t* r) {
      phases.push_back(get<std::uint32_t>(r, 0));
      std::vector<std::uint8_t> expected(3248);
      const auto environment = Environment().getEnvironmentType();
      put<std::uint32_t>(expected.data(), 0, phases.back());
      put<std::uint32_t>(
          expected.data(), 4,
          static_cast<std::uint32_t>(environment.ok() ? environment.value() : EnvironmentType::kHost));
      put<std::uint64_t>(expected.data(), 24, 12345);
      EXPECT_EQ(std::vector<std::uint8_t>(r, r + 3248), expected) << "each send is fresh";
      std::memset(r, 0xA5, 3248);
      put<std::uint32_t>(r, 32, static_cast<int>(phases.size()) >= asksUntilReady ? 1 : 0);
      put<std::uint32_t>(r, 36, 2);
      for (std::size_t i = 0; i < 2; ++i) {
        std::uint8_t* const row = r + 48 + 40 * i;
        put<std::uint32_t>(row, 0, static_cast<std::uint32_t>(100 + i));
        put<std::uint32_t>(row, 4, 1);
        put<std::uint64_t>(row, 8, 9UL << 33);
        for (std::uint32_t field = 0; field < 4; ++field) {
          put<std::uint32_t>(row, 16 + field * 4, 10 + field);
        }
      }
      return 0;
    });
    EXPECT_TRUE(provider.init().ok());
  }
  auto ask() { return provider.getIntf<kQueryProcGpuUtil>().value().operation(QueryProcGpuUtilParam{12345}); }

  OldDriver driver{{{30, 0}}};
  MiscMkisProvider provider{"ovgpu.3"};
  std::vector<std::uint32_t> phases;
};

TEST(OldRecords, ProcessSharesAreAskedForAndFetched) {
  Sampling sampling(3);
  const auto shares = sampling.ask();
  ASSERT_TRUE(shares.ok());
  EXPECT_EQ(sampling.phases, (std::vector<std::uint32_t>{0, 0, 0, 2}));
  ASSERT_EQ(shares.value().size(), 2U);
  const ProcessGpuUtil& second = shares.value().at(101);
  EXPECT_EQ(second.kind, 1U);
  EXPECT_EQ(second.timestamp, 9UL << 33);
  EXPECT_EQ(second.gpu, 10U);
  EXPECT_EQ(second.memory, 11U);
  EXPECT_EQ(second.encoder, 12U);
  EXPECT_EQ(second.decoder, 13U);
}

TEST(OldRecords, ProcessSharesThatNeverComeFailAfterFiveAsks) {
  LogCapture log;
  Sampling sampling(100);
  EXPECT_EQ(sampling.ask().state(), KelpReturn::kFailure);
  EXPECT_EQ(sampling.phases, (std::vector<std::uint32_t>{0, 0, 0, 0, 0}));
  EXPECT_EQ(log.count(">> failed to query process gpu utilization, access error is  1 "), 1U);
}

TEST(OldRecords, DriverWithoutProbesIsAskedInTheOldestVersionsAlone) {
  tolk_test::ScriptedDriver driver;
  driver.allowOpen(OldDriver::kNode);
  driver.fail(0xC00C4DAE, ENOTTY);
  driver.fail(0xC0104DB0, ENOTTY);
  for (const std::uint32_t request : {0xC0484D05U, 0xC0A04DA6U, 0xB9884DA7U, 0x81084DA9U}) {
    driver.answer(request, [](std::uint8_t*) { return 0; });
  }
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  EXPECT_TRUE(provider.getIntf<kQueryGpuStatus>().value().operation().ok());
  EXPECT_TRUE(provider.getIntf<kQueryMemUsage>().value().operation().ok());
  EXPECT_TRUE(provider.getIntf<kQueryProcMemState>().value().operation().ok());
  EXPECT_TRUE(provider.getIntf<kQueryPciConfigData>().value().operation().ok());
  EXPECT_EQ(provider.getIntf<kQueryTemper>().state(), MkisError::kNotListed);
  EXPECT_EQ(provider.getIntf<kQueryP2pStatus>().state(), MkisError::kNotListed);
}

TEST(OldRecords, RecordIsNotSentOnAClosedDescriptor) {
  tolk_test::ScriptedDriver driver;
  LogCapture log;
  MiscKernelAccessorV0 accessor{NodeFile()};
  EXPECT_EQ(accessor.doQueryPcieReplayCounter().at(0)().state(), KelpReturn::kFailure);
  EXPECT_TRUE(driver.calls.empty());
  EXPECT_TRUE(log.has(LogLevel::kError, ">> access< MkiPcieReplayCounterV0 fd is invalid ! "));
  EXPECT_TRUE(log.has(LogLevel::kError, ">> failed to query pcie replay counter, access error is  1 "));
}

}  // namespace
}  // namespace kelp::linux_
