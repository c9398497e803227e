#include "on_hosts/values_fixture.h"

// Links between GPUs and measurements of traffic, against the description of the host. GPUs 0 and 1 have two
// links, 1 and 2 one; nothing joins 0 and 2 but 1.

namespace {

using tolk_test::ask;
using tolk_test::askList;
using tolk_test::ValuesHost;

TEST_F(ValuesHost, LinksAreAsToldByTheDriver) {
  EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkSpec),
            "2 " + file_.text("/sablink/speed") + " " + file_.text("/sablink/version"));
  EXPECT_EQ(ask(of(1), lumoDeviceGetSablinkSpec).substr(0, 2), "3 ");
  EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkState, 1U), text(LUMO_SABLINK_UP));
  EXPECT_EQ(ask(of(1), lumoDeviceGetSablinkState, 1U), text(LUMO_SABLINK_DOWNGRADED));
  EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkState, 2U), "refused 3") << "it has two";
  for (const unsigned link : {0U, 1U}) {
    for (const unsigned capability : {0U, 1U}) {
      EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkCapStatus, link, capability),
                told(0, "values/sablink_capability/" + text(link) + "," + text(capability)));
    }
    for (unsigned kind = 0; kind < 6; ++kind) {
      EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkErrorCounter, link, kind),
                told(0, "values/sablink_errors/" + text(link) + "," + text(kind)));
    }
    EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkRemoteDevice, link), told(1, "misc"));
    EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkRemoteLink, link), text(link));
  }
  EXPECT_EQ(ask(of(2), lumoDeviceGetSablinkRemoteLink, 0U), "2") << "the third link of GPU 1";
  EXPECT_EQ(ask(of(1), lumoDeviceGetSablinkCapStatus, 1U, 0U), "1") << "a downgraded link carries traffic";
  EXPECT_EQ(ask(of(4), lumoDeviceGetSablinkSpec), kNotSupported);
}

TEST_F(ValuesHost, LinksJoinTwoDevices) {
  LumoDevice* remote = nullptr;
  ASSERT_EQ(lumoDeviceGetSablinkRemoteDevice(device(0), 0, &remote), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(remote, device(1));
  EXPECT_EQ(ask(of(0), lumoDeviceCountSablinkLayouts, device(1)), "2");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, device(1)),
            "0 0; 1 1");
  EXPECT_EQ(askList(of(1), lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, device(2)), "2 0");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, device(2)), "empty");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, device(4)),
            kNotSupported)
      << "the other one has no links";
}

TEST_F(ValuesHost, PathsLeadOverOtherDevices) {
  EXPECT_EQ(ask(of(0), lumoDeviceCountSablinkShortestPaths, device(2)), "1");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkShortestPaths, lumoDeviceGetSablinkShortestPaths, device(1)),
            "2 0 5");
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkShortestPaths, lumoDeviceGetSablinkShortestPaths, device(2)),
            "3 0 5 " + ask(of(2), lumoDeviceGetIntId));
  EXPECT_EQ(askList(of(0), lumoDeviceCountSablinkShortestPaths, lumoDeviceGetSablinkShortestPaths, device(3)),
            kNotSupported);
}

TEST_F(ValuesHost, LinksTellOfTheirLanes) {
  LumoSablinkSerdesStatus status;
  ASSERT_EQ(lumoDeviceGetSablinkSerdesStatus(device(0), 0, &status), LUMO_RETURN_SUCCESS);
  ASSERT_EQ(status.laneCount, 4U);
  for (unsigned lane = 0; lane < LUMO_SABLINK_LANES; ++lane) {
    const std::string key = "/0," + text(lane);
    EXPECT_EQ(status.lanes[lane].state, 2U) << "locked";
    EXPECT_EQ(status.lanes[lane].eyeWidth, number(0, "values/serdes_eye_width" + key));
    EXPECT_EQ(status.lanes[lane].eyeHeight, number(0, "values/serdes_eye_height" + key));
    EXPECT_EQ(status.lanes[lane].bitErrors, number(0, "values/serdes_bit_errors" + key));
  }
}

TEST_F(ValuesHost, TheTrafficOfALinkIsMeasured) {
  unsigned session = 0;
  unsigned intervalMs = 0;
  ASSERT_EQ(lumoDeviceStartSablinkPerf(device(0), 1, &session, &intervalMs), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(intervalMs, number(0, "values/sablink_perf_interval"));
  LumoSablinkPerfData data;
  for (unsigned interval = 1; interval <= 3; ++interval) {
    ASSERT_EQ(lumoDeviceGetSablinkPerfData(device(0), 1, session, &data), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(data.samples, interval);
    EXPECT_EQ(data.rxRate, number(0, "values/sablink_rx_rate/1"));
    EXPECT_EQ(data.txRate, number(0, "values/sablink_tx_rate/1"));
    EXPECT_EQ(data.rxBytes, data.rxRate * interval * intervalMs / 1000);
    EXPECT_EQ(data.txBytes, data.txRate * interval * intervalMs / 1000);
  }
  EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkPerfData, 0U, session), "refused 7") << "not of that link";
  EXPECT_EQ(ask(of(0), lumoDeviceStopSablinkPerf, 1U, session), "3");
  EXPECT_EQ(ask(of(0), lumoDeviceGetSablinkPerfData, 1U, session), "refused 7") << "it has ended";
  EXPECT_EQ(ask(of(0), lumoDeviceStopSablinkPerf, 1U, session), "refused 7");
}

TEST_F(ValuesHost, TheTrafficOfTheBusIsMeasured) {
  unsigned session = 0;
  ASSERT_EQ(lumoDeviceStartPciePerf(device(0), 200, &session), LUMO_RETURN_SUCCESS);
  unsigned other = 0;
  ASSERT_EQ(lumoDeviceStartPciePerf(device(0), 400, &other), LUMO_RETURN_SUCCESS);
  EXPECT_NE(session, other);
  LumoPcieBandWidth data;
  for (unsigned interval = 1; interval <= 3; ++interval) {
    ASSERT_EQ(lumoDeviceGetPcieBandWidth(device(0), session, &data), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(data.samples, interval);
    EXPECT_EQ(data.rxRate, number(0, "values/pcie_rx_rate"));
    EXPECT_EQ(data.txRate, number(0, "values/pcie_tx_rate"));
    EXPECT_EQ(data.rxBytes, data.rxRate * interval * 200 / 1000);
    EXPECT_EQ(data.txBytes, data.txRate * interval * 200 / 1000);
    EXPECT_EQ(data.state, number(0, "values/pcie_perf_state"));
    EXPECT_EQ(data.rxMin, number(0, "values/pcie_rx_min"));
    EXPECT_EQ(data.rxMean, number(0, "values/pcie_rx_mean"));
    EXPECT_EQ(data.rxMax, number(0, "values/pcie_rx_max"));
    EXPECT_EQ(data.txMin, number(0, "values/pcie_tx_min"));
    EXPECT_EQ(data.txMean, LUMO_NOT_AVAILABLE) << told(0, "values/pcie_tx_mean");
    EXPECT_EQ(data.txMax, number(0, "values/pcie_tx_max"));
  }
  EXPECT_EQ(ask(of(0), lumoDeviceStopPciePerf, session), "");
  EXPECT_EQ(ask(of(0), lumoDeviceGetPcieBandWidth, session), "refused 7");
  ASSERT_EQ(lumoDeviceGetPcieBandWidth(device(0), other, &data), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data.samples, 1U) << "the other one goes on";
  EXPECT_EQ(ask(of(0), lumoDeviceStopPciePerf, other), "");
}

TEST_F(ValuesHost, DevicesReachEachOthersMemory) {
  EXPECT_EQ(ask(of(0), lumoDeviceGetP2PStatus, device(0), 0U), text(LUMO_P2P_GPU_NOT_SUPPORTED)) << "itself";
  // By the number of the other's node, which is 5.
  EXPECT_EQ(ask(of(0), lumoDeviceGetP2PStatus, device(1), 0U), "refused 7")
      << "the driver knows nothing of it";
  EXPECT_EQ(ask(of(0), lumoDeviceGetP2PStatus, device(2), 0U), told(0, "values/p2p_status/1,0"));
  EXPECT_EQ(ask(of(0), lumoDeviceGetP2PStatus, device(2), 1U), told(0, "values/p2p_status/1,1"));
}

}  // namespace
