#include "old_driver.h"

// The PCI side and the Sablink ports of a device whose driver speaks protocol 0. Versions, numbers, sizes and
// offsets are typed from the driver's tables.

namespace kelp::linux_ {
namespace {

using tolk_test::exchangeRecord;
using tolk_test::OldDriver;
using enum MiscMkisIntfName;

TEST(OldLinkRecords, ConfigurationSpaceIsTheCopyAsItComes) {
  const auto info = exchangeRecord<kQueryPciConfigData>(
                        0, 0x81084DA9, 264, {},
                        {{0, 2, 0x4F56}, {2, 2, 0x0230}, {8, 1, 3}, {44, 2, 5}, {46, 2, 6}, {52, 1, 0}})
                        .value();
  EXPECT_EQ(info.vendorId.value(), 0x4F56U);
  EXPECT_EQ(info.deviceId.value(), 0x0230U);
  EXPECT_EQ(info.revisionId.value(), 3U);
  EXPECT_EQ(info.subsystemVendorId.value(), 5U);
  EXPECT_EQ(info.subsystemDeviceId.value(), 6U);
  EXPECT_EQ(info.busWidth.state(), KelpReturn::kNotSupported);
}

TEST(OldLinkRecords, PeerStatus) {
  EXPECT_EQ(exchangeRecord<kQueryP2pStatus>(0, 0x80304DAB, 48, {{0, 4, 70000}, {4, 4, 1}}, {{8, 4, 2}},
                                            QueryP2pStatusParam{.peer = 70000, .capability = 1})
                .value(),
            P2pCapStatus::kGpuNotSupported);
}

TEST(OldLinkRecords, PcieMeasurementOfTheFirstVersionEndsBehindTheReceiveRates) {
  EXPECT_EQ(
      exchangeRecord<kStartPciePerf>(0, 0xC0084DC0, 8, {{0, 4, 100}}, {{4, 4, 7}}, StartPciePerfParam{100})
          .value(),
      7U);
  const auto data = exchangeRecord<kQueryPciePerfData>(0, 0xC0404DC1, 64, {{4, 4, 7}},
                                                       {{8, 8, 1UL << 40},
                                                        {16, 8, 2UL << 40},
                                                        {24, 8, 3UL << 40},
                                                        {32, 8, 4UL << 40},
                                                        {40, 4, 1},
                                                        {52, 4, 11},
                                                        {56, 4, 12},
                                                        {60, 4, 13}},
                                                       QueryPciePerfDataParam{7})
                        .value();
  EXPECT_EQ(data.rxBytes, 1UL << 40);
  EXPECT_EQ(data.txBytes, 2UL << 40);
  EXPECT_EQ(data.rxRate, 3UL << 40);
  EXPECT_EQ(data.txRate, 4UL << 40);
  EXPECT_EQ(data.state, 1U);
  EXPECT_EQ(data.rxMin.value(), 11U);
  EXPECT_EQ(data.rxMean.value(), 12U);
  EXPECT_EQ(data.rxMax.value(), 13U);
  for (const auto& absent : {data.txMin, data.txMean, data.txMax, data.samples}) {
    EXPECT_EQ(absent.state(), KelpReturn::kNotSupported);
  }
  EXPECT_EQ(exchangeRecord<kStopPciePerf>(0, 0xC0084DC2, 8, {{0, 4, 7}}, {{4, 4, 18}}, StopPciePerfParam{7})
                .value(),
            18);
}

TEST(OldLinkRecords, PcieMeasurementOfTheSecondVersion) {
  EXPECT_EQ(exchangeRecord<kStartPciePerf>(1, 0xC00C4DC0, 12, {{0, 4, 100}}, {{4, 4, 8}, {8, 4, 120}},
                                           StartPciePerfParam{100})
                .value(),
            8U);
  const auto data = exchangeRecord<kQueryPciePerfData>(
                        1, 0xC0684DC1, 104, {{4, 4, 8}},
                        {{8, 8, 1}, {60, 4, 13}, {64, 4, 14}, {68, 4, 15}, {72, 4, 16}, {92, 4, 17}},
                        QueryPciePerfDataParam{8})
                        .value();
  EXPECT_EQ(data.rxBytes, 1U);
  EXPECT_EQ(data.rxMax.value(), 13U);
  EXPECT_EQ(data.txMin.value(), 14U);
  EXPECT_EQ(data.txMean.value(), 15U);
  EXPECT_EQ(data.txMax.value(), 16U);
  EXPECT_EQ(data.samples.value(), 17U);
}

TEST(OldLinkRecords, SlotAndReplays) {
  const auto slot =
      exchangeRecord<kQueryPcieSlotInfo>(0, 0x80404DAA, 64, {}, {{0, 4, 3}, {4, std::string(40, 'S')}})
          .value();
  EXPECT_EQ(slot.number, 3U);
  EXPECT_EQ(slot.name, std::string(40, 'S'));
  EXPECT_EQ(exchangeRecord<kQueryPcieReplayCounter>(0, 0x80204DE0, 32, {}, {{0, 8, 5UL << 33}}).value(),
            5UL << 33);
}

TEST(OldLinkRecords, SablinkPropertiesCapabilityAndState) {
  const auto spec =
      exchangeRecord<kQuerySablinkSpec>(1, 0x800C4DC0, 12, {}, {{0, 4, 33}, {4, 4, 32000}, {8, 4, 200}})
          .value();
  EXPECT_EQ(spec.linkCount, 32U) << "more are not believed";
  EXPECT_EQ(spec.linkSpeed, 32000U);
  EXPECT_EQ(spec.version, 200U);
  EXPECT_EQ(exchangeRecord<kQuerySablinkCapStatus>(1, 0x800C4DC1, 12, {{0, 4, 5}, {4, 4, 1}}, {{8, 4, 1}},
                                                   QuerySablinkCapStatusParam{.link = 5, .capability = 1})
                .value(),
            SablinkCapStatus::kYes);
  EXPECT_EQ(exchangeRecord<kQuerySablinkState>(1, 0x80084DC2, 8, {{0, 4, 5}}, {{4, 4, 2}},
                                               QuerySablinkStateParam{5})
                .value(),
            SablinkState::kDowngraded);
}

TEST(OldLinkRecords, SablinkErrorsOfBothVersionsAreOneRequest) {
  for (const std::uint32_t version : {1U, 2U}) {
    for (std::uint32_t kind = 0; kind < (version == 1 ? 4U : 6U); ++kind) {
      EXPECT_EQ(exchangeRecord<kQuerySablinkErrCounter>(version, 0x80104DC3, 16, {{0, 4, 5}, {4, 4, kind}},
                                                        {{8, 8, 3UL << 34}},
                                                        QuerySablinkErrCounterParam{.link = 5, .kind = kind})
                    .value(),
                3UL << 34);
    }
  }
  EXPECT_EQ(exchangeRecord<kResetSablinkErrCounter>(1, 0x40044DC4, 4, {{0, 4, 5}}, {}, 5U).value(), 0);
}

TEST(OldLinkRecords, FirstSablinkErrorsHaveFourKindsAndNothingIsSentForAnother) {
  OldDriver driver({{20, 1}});
  MiscMkisProvider provider("ovgpu.3");
  ASSERT_TRUE(provider.init().ok());
  const std::size_t before = driver.calls.size();
  const auto intf = provider.getIntf<kQuerySablinkErrCounter>();
  for (const std::uint32_t kind : {4U, 5U, 0xFFFFFFFFU}) {
    EXPECT_EQ(intf.value().operation(QuerySablinkErrCounterParam{.link = 0, .kind = kind}).state(),
              KelpReturn::kNotSupported);
  }
  EXPECT_EQ(driver.calls.size(), before);
}

TEST(OldLinkRecords, SablinkLayoutsNameThePeerInFullWidth) {
  const auto layouts = exchangeRecord<kQuerySablinkLayouts>(
                           1, 0x80884DC5, 136, {{4, 4, 70000}},
                           {{0, 4, 17}, {8, 4, 1}, {12, 4, 2}, {8 + 8 * 15, 4, 3}, {12 + 8 * 15, 4, 4}},
                           QuerySablinkLayoutsParam{70000})
                           .value();
  ASSERT_EQ(layouts.size(), 16U);
  EXPECT_EQ(layouts[0].remotePort, 2U);
  EXPECT_EQ(layouts[15].localPort, 3U);
  EXPECT_EQ(layouts[15].remotePort, 4U);
}

TEST(OldLinkRecords, SablinkNeighbour) {
  const auto remote = exchangeRecord<kQuerySablinkRemoteDev>(
                          1, 0x80244DC6, 36, {{0, 4, 5}}, {{4, 8, 0x1'0041'0200UL}, {12, 4, 6}, {16, 2, 300}},
                          QuerySablinkStateParam{5})
                          .value();
  EXPECT_EQ(remote.sbdf, 0x1'0041'0200UL);
  EXPECT_EQ(remote.link, 6U);
  EXPECT_EQ(remote.miscId, 300U);
}

TEST(OldLinkRecords, SablinkPathsAreCutToTheirRowsAndDevices) {
  const std::size_t last = 8 + 68 * 15;
  const auto paths =
      exchangeRecord<kQuerySablinkShortestPaths>(
          1, 0x84484DC7, 1096, {{4, 4, 70000}},
          {{0, 4, 17}, {8, 4, 2}, {12, 4, 3}, {16, 4, 70000}, {last, 4, 17}, {last + 4 + 4 * 15, 4, 99}},
          QuerySablinkLayoutsParam{70000})
          .value();
  ASSERT_EQ(paths.size(), 16U);
  EXPECT_EQ(paths[0].miscIds, (std::vector<std::uint32_t>{3, 70000}));
  ASSERT_EQ(paths[15].miscIds.size(), 16U);
  EXPECT_EQ(paths[15].miscIds[15], 99U);
}

TEST(OldLinkRecords, SablinkMeasurement) {
  const auto start = exchangeRecord<kStartSablinkPerf>(0, 0xC00C4DC8, 12, {{0, 4, 5}},
                                                       {{4, 4, 9}, {8, 4, 120}}, StartSablinkPerfParam{5})
                         .value();
  EXPECT_EQ(start.sessionId, 9U);
  EXPECT_EQ(start.actualInterval, 120U);
  const QuerySablinkPerfDataParam session{.link = 5, .sessionId = 9};
  const auto data =
      exchangeRecord<kQuerySablinkPerfData>(
          0, 0xC0304DC9, 48, {{0, 4, 5}, {4, 4, 9}},
          {{8, 8, 1UL << 35}, {16, 8, 2UL << 35}, {24, 8, 3UL << 35}, {32, 8, 4UL << 35}, {40, 4, 6}},
          session)
          .value();
  EXPECT_EQ(data.rxBytes, 1UL << 35);
  EXPECT_EQ(data.txBytes, 2UL << 35);
  EXPECT_EQ(data.rxRate, 3UL << 35);
  EXPECT_EQ(data.txRate, 4UL << 35);
  EXPECT_EQ(data.samples, 6U);
  EXPECT_EQ(exchangeRecord<kStopSablinkPerf>(0, 0xC00C4DCA, 12, {{0, 4, 5}, {4, 4, 9}}, {{8, 4, 7}}, session)
                .value()
                .samples,
            7U);
}

TEST(OldLinkRecords, LanesEndInSixteenZeroBytes) {
  const auto status = exchangeRecord<kQuerySablinkSerdesStatus>(
                          0, 0xC0444DCB, 68, {{0, 4, 4}, {4, 4, 5}},
                          {{0, 4, 400}, {4, 4, 2}, {4 + 16 * 3 + 12, 4, 77}}, QuerySablinkStateParam{5})
                          .value();
  EXPECT_EQ(status.laneCount, 4U);
  EXPECT_EQ(status.lanes[0].state, 2U);
  EXPECT_EQ(status.lanes[3].bitErrors, 77U);
  EXPECT_EQ(status.lanes[2].eyeWidth, 0xA5A5A5A5U);
  for (const std::uint8_t byte : status.reserved) {
    EXPECT_EQ(byte, 0);
  }
}

}  // namespace
}  // namespace kelp::linux_
