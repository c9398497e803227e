#include "call_exchange.h"

// What is sent to and read from the PCI side of a device and its Sablink ports. Versions, sizes and
// offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using tolk_test::exchange;
using tolk_test::Fields;
using enum MiscMkisIntfName;

TEST(LinkRecords, PeerStatus) {
  const auto status = [](std::uint32_t number) {
    return exchange<kQueryP2pStatus>(1, 28, {{0, 4, 70000}, {4, 4, 1}}, {{8, 4, number}},
                                     QueryP2pStatusParam{.peer = 70000, .capability = 1})
        .value();
  };
  EXPECT_EQ(status(0), P2pCapStatus::kOk);
  EXPECT_EQ(status(2), P2pCapStatus::kGpuNotSupported);
  EXPECT_EQ(static_cast<std::uint32_t>(status(9)), 9U) << "an unknown status stays what it is";
}

TEST(LinkRecords, PcieMeasurement) {
  EXPECT_EQ(exchange<kStartPciePerf>(2, 28, {{0, 4, 100}}, {{4, 4, 7}, {8, 4, 120}},
                                     StartPciePerfParam{.interval = 100})
                .value(),
            7U);
  const auto data = exchange<kQueryPciePerfData>(2, 112, {{4, 4, 7}},
                                                 {{8, 8, 1UL << 40},
                                                  {16, 8, 2UL << 40},
                                                  {24, 8, 3UL << 40},
                                                  {32, 8, 4UL << 40},
                                                  {40, 4, 1},
                                                  {52, 4, 11},
                                                  {56, 4, 12},
                                                  {60, 4, 13},
                                                  {64, 4, 14},
                                                  {68, 4, 15},
                                                  {72, 4, 0xFFFFFFFF},
                                                  {92, 4, 17}},
                                                 QueryPciePerfDataParam{.sessionId = 7})
                        .value();
  EXPECT_EQ(data.rxBytes, 1UL << 40);
  EXPECT_EQ(data.txBytes, 2UL << 40);
  EXPECT_EQ(data.rxRate, 3UL << 40);
  EXPECT_EQ(data.txRate, 4UL << 40);
  EXPECT_EQ(data.state, 1U);
  EXPECT_EQ(data.rxMin.value(), 11U);
  EXPECT_EQ(data.rxMean.value(), 12U);
  EXPECT_EQ(data.rxMax.value(), 13U);
  EXPECT_EQ(data.txMin.value(), 14U);
  EXPECT_EQ(data.txMean.value(), 15U);
  EXPECT_EQ(data.txMax.value(), 0xFFFFFFFFU) << "a rate is always valid";
  EXPECT_EQ(data.samples.value(), 17U);
  EXPECT_EQ(
      exchange<kStopPciePerf>(1, 24, {{0, 4, 7}}, {{4, 4, 18}}, StopPciePerfParam{.sessionId = 7}).value(),
      18);
  EXPECT_EQ(
      exchange<kStopPciePerf>(1, 24, {{0, 4, 7}}, {{4, 4, 0xFFFFFFFF}}, StopPciePerfParam{.sessionId = 7})
          .value(),
      0x7FFFFFFF);
}

TEST(LinkRecords, SlotNameEndsWithItsField) {
  const auto slot =
      exchange<kQueryPcieSlotInfo>(1, 60, {}, {{0, 4, 3}, {4, std::string("SLOT3\0", 6)}}).value();
  EXPECT_EQ(slot.number, 3U);
  EXPECT_EQ(slot.name, "SLOT3");
  EXPECT_EQ(exchange<kQueryPcieSlotInfo>(1, 60, {}, {{4, std::string(40, 'S')}}).value().name,
            std::string(40, 'S'));
}

TEST(LinkRecords, Replays) {
  EXPECT_EQ(exchange<kQueryPcieReplayCounter>(1, 32, {}, {{0, 8, 5UL << 33}}).value(), 5UL << 33);
}

TEST(LinkRecords, ThirdMemoryWindow) {
  const auto window =
      exchange<kQueryPcieBar2MemInfo>(0, 56, {}, {{0, 8, 3UL << 32}, {8, 8, 1UL << 32}, {16, 8, 2UL << 32}})
          .value();
  EXPECT_EQ(window.total, 3UL << 32);
  EXPECT_EQ(window.used, 1UL << 32);
  EXPECT_EQ(window.free, 2UL << 32);
}

TEST(LinkRecords, SablinkProperties) {
  const auto spec = exchange<kQuerySablinkSpec>(2, 28, {}, {{0, 4, 6}, {4, 4, 32000}, {8, 4, 200}}).value();
  EXPECT_EQ(spec.linkCount, 6U);
  EXPECT_EQ(spec.linkSpeed, 32000U);
  EXPECT_EQ(spec.version, 200U);
}

TEST(LinkRecords, SablinksAreAtMostThirtyTwo) {
  EXPECT_EQ(exchange<kQuerySablinkSpec>(2, 28, {}, {{0, 4, 32}}).value().linkCount, 32U);
  EXPECT_EQ(exchange<kQuerySablinkSpec>(2, 28, {}, {{0, 4, 0xFFFFFFFF}}).value().linkCount, 32U);
}

TEST(LinkRecords, SablinkCapabilityAndState) {
  EXPECT_EQ(exchange<kQuerySablinkCapStatus>(2, 28, {{0, 4, 5}, {4, 4, 1}}, {{8, 4, 1}},
                                             QuerySablinkCapStatusParam{.link = 5, .capability = 1})
                .value(),
            SablinkCapStatus::kYes);
  EXPECT_EQ(exchange<kQuerySablinkState>(2, 24, {{0, 4, 5}}, {{4, 4, 2}}, QuerySablinkStateParam{.link = 5})
                .value(),
            SablinkState::kDowngraded);
}

TEST(LinkRecords, SablinkErrorCounters) {
  EXPECT_EQ(exchange<kQuerySablinkErrCounter>(3, 32, {{0, 4, 5}, {4, 4, 4}}, {{8, 8, 3UL << 34}},
                                              QuerySablinkErrCounterParam{.link = 5, .kind = 4})
                .value(),
            3UL << 34);
  EXPECT_EQ(exchange<kResetSablinkErrCounter>(2, 20, {{0, 4, 5}}, {}, 5U).value(), 0);
}

TEST(LinkRecords, SablinkLayouts) {
  const auto layouts = exchange<kQuerySablinkLayouts>(
                           2, 406, {{4, 2, 300}}, {{0, 4, 2}, {6, 4, 0}, {10, 4, 1}, {14, 4, 2}, {18, 4, 3}},
                           QuerySablinkLayoutsParam{.peer = 300})
                           .value();
  ASSERT_EQ(layouts.size(), 2U);
  EXPECT_EQ(layouts[0].localPort, 0U);
  EXPECT_EQ(layouts[0].remotePort, 1U);
  EXPECT_EQ(layouts[1].localPort, 2U);
  EXPECT_EQ(layouts[1].remotePort, 3U);
}

TEST(LinkRecords, PeerThatFitsNoFieldNeverBecomesAnother) {
  EXPECT_TRUE(exchange<kQuerySablinkLayouts>(2, 406, {{4, 2, 0xFFFF}}, {{0, 4, 0}},
                                             QuerySablinkLayoutsParam{.peer = 65536})
                  .value()
                  .empty());
  EXPECT_TRUE(exchange<kQuerySablinkShortestPaths>(2, 854, {{4, 2, 0xFFFF}}, {{0, 4, 0}},
                                                   QuerySablinkLayoutsParam{.peer = 65537})
                  .value()
                  .empty());
}

TEST(LinkRecords, SablinkListsAreNoLongerThanTheirRecords) {
  const auto layouts =
      exchange<kQuerySablinkLayouts>(2, 406, {}, {{0, 4, 49}, {386, 4, 77}}, QuerySablinkLayoutsParam{})
          .value();
  ASSERT_EQ(layouts.size(), 48U);
  EXPECT_EQ(layouts[47].remotePort, 77U);
  Fields reply{{0, 4, 0xFFFFFFFF}};
  for (std::size_t i = 0; i < 16; ++i) {
    reply.emplace_back(6 + i * 52, 4, i == 15 ? 25 : 2);
  }
  reply.emplace_back(6 + 15 * 52 + 4 + 23 * 2, 2, 88);
  const auto paths =
      exchange<kQuerySablinkShortestPaths>(2, 854, {}, reply, QuerySablinkLayoutsParam{}).value();
  ASSERT_EQ(paths.size(), 16U);
  EXPECT_EQ(paths[14].miscIds.size(), 2U);
  ASSERT_EQ(paths[15].miscIds.size(), 24U);
  EXPECT_EQ(paths[15].miscIds[23], 88U);
}

TEST(LinkRecords, OtherEndOfASablink) {
  const auto remote = exchange<kQuerySablinkRemoteDev>(2, 34, {{0, 4, 5}},
                                                       {{4, 8, 0x0000000100410000}, {12, 4, 3}, {16, 2, 300}},
                                                       QuerySablinkStateParam{.link = 5})
                          .value();
  EXPECT_EQ(remote.sbdf, 0x0000000100410000UL);
  EXPECT_EQ(remote.link, 3U);
  EXPECT_EQ(remote.miscId, 300U);
}

TEST(LinkRecords, ShortestPaths) {
  const auto paths =
      exchange<kQuerySablinkShortestPaths>(
          2, 854, {{4, 2, 2}},
          {{0, 4, 2}, {6, 4, 2}, {10, 2, 0}, {12, 2, 2}, {58, 4, 3}, {62, 2, 0}, {64, 2, 1}, {66, 2, 2}},
          QuerySablinkLayoutsParam{.peer = 2})
          .value();
  ASSERT_EQ(paths.size(), 2U);
  EXPECT_EQ(paths[0].miscIds, (std::vector<std::uint32_t>{0, 2}));
  EXPECT_EQ(paths[1].miscIds, (std::vector<std::uint32_t>{0, 1, 2}));
}

TEST(LinkRecords, SablinkMeasurement) {
  const auto start = exchange<kStartSablinkPerf>(1, 28, {{0, 4, 5}}, {{4, 4, 9}, {8, 4, 250}},
                                                 StartSablinkPerfParam{.link = 5})
                         .value();
  EXPECT_EQ(start.sessionId, 9U);
  EXPECT_EQ(start.actualInterval, 250U);
  const auto data =
      exchange<kQuerySablinkPerfData>(
          1, 60, {{48, 4, 5}, {52, 4, 9}},
          {{8, 8, 1UL << 40}, {16, 8, 2UL << 40}, {24, 8, 3UL << 40}, {32, 8, 4UL << 40}, {40, 4, 6}},
          QuerySablinkPerfDataParam{.link = 5, .sessionId = 9})
          .value();
  EXPECT_EQ(data.rxBytes, 1UL << 40);
  EXPECT_EQ(data.txBytes, 2UL << 40);
  EXPECT_EQ(data.rxRate, 3UL << 40);
  EXPECT_EQ(data.txRate, 4UL << 40);
  EXPECT_EQ(data.samples, 6U);
  EXPECT_EQ(exchange<kStopSablinkPerf>(1, 28, {{16, 4, 5}, {20, 4, 9}}, {{8, 4, 7}},
                                       QuerySablinkPerfDataParam{.link = 5, .sessionId = 9})
                .value()
                .samples,
            7U);
}

TEST(LinkRecords, LanesComeBackWhereTheLinkWas) {
  Fields reply{{0, 4, 4}};
  for (std::size_t i = 0; i < 16; ++i) {
    reply.emplace_back(4 + i * 4, 4, 100 + i);
  }
  reply.emplace_back(83, 1, 42);
  const auto status = exchange<kQuerySablinkSerdesStatus>(1, 84, {{0, 4, 4}, {4, 4, 5}}, reply,
                                                          QuerySablinkStateParam{.link = 5})
                          .value();
  EXPECT_EQ(status.laneCount, 4U);
  EXPECT_EQ(status.lanes[0].state, 100U);
  EXPECT_EQ(status.lanes[0].eyeWidth, 101U);
  EXPECT_EQ(status.lanes[3].eyeHeight, 114U);
  EXPECT_EQ(status.lanes[3].bitErrors, 115U);
  EXPECT_EQ(status.reserved[15], 42U) << "the payload is kept whole";
}

TEST(LinkRecords, LanesAreNoMoreThanTheRecordHolds) {
  EXPECT_EQ(exchange<kQuerySablinkSerdesStatus>(1, 84, {{0, 4, 4}, {4, 4, 5}}, {{0, 4, 5}},
                                                QuerySablinkStateParam{.link = 5})
                .value()
                .laneCount,
            4U);
}

}  // namespace
}  // namespace kelp::linux_
