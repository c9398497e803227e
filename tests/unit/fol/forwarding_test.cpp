#include "feature_fixture.h"
#include "fen2/fen2_pcie_feat_obj.h"
#include "objects/affinity_feat_obj.h"
#include "objects/ecc_feat_obj.h"
#include "objects/event_feat_obj.h"
#include "objects/fan_feat_obj.h"
#include "objects/memory_feat_obj.h"
#include "objects/pfm_feat_obj.h"
#include "objects/sablink_feat_obj.h"
#include "objects/topology_feat_obj.h"
#include "objects/virtual_feat_obj.h"
#include "objects/vpu_feat_obj.h"

// Questions that are one command: its arguments arrive, its state comes back untouched, and no other
// command is run.

namespace kelp {
namespace {

class ForwardingTest : public tolk_test::FeatureFixture {
 protected:
  const std::shared_ptr<CoreModel>& model() { return modelOf(DevType::kPhysical, DevArch::kFen2); }

  template <class Cmd, class Ask, class Matches>
  void expectForwarded(Ask ask, Matches matches) {
    bool matched = false;
    platform_.answerBy<Cmd>([&](const DevCuid&, const Cmd& cmd) {
      matched = matches(cmd);
      return Stated<typename Cmd::Result>(KelpReturn::kDeviceLost);
    });
    platform_.asked.clear();
    EXPECT_EQ(ask().state(), KelpReturn::kDeviceLost) << typeid(Cmd).name();
    EXPECT_EQ(platform_.asked.size(), 1U) << typeid(Cmd).name();
    EXPECT_TRUE(matched) << typeid(Cmd).name();
  }

  template <class Cmd, class Ask>
  void expectForwarded(Ask ask) {
    expectForwarded<Cmd>(ask, [](const Cmd&) { return true; });
  }
};

template <class Cmd>
const auto& paramOf(const Cmd& cmd) {
  return std::get<0>(cmd.params);
}

TEST_F(ForwardingTest, Affinity) {
  const AffinityFeatObj affinity(model());
  using Cmd = QueryAffinityWithinNodeCmd;
  expectForwarded<Cmd>([&] { return affinity.readMemoryAffinity(); },
                       [](const Cmd& cmd) { return static_cast<unsigned int>(cmd.type) == 2; });
  expectForwarded<Cmd>([&] { return affinity.readCpuList(); },
                       [](const Cmd& cmd) { return static_cast<unsigned int>(cmd.type) == 0; });
  expectForwarded<Cmd>([&] { return affinity.readCpuBitmask(); },
                       [](const Cmd& cmd) { return static_cast<unsigned int>(cmd.type) == 1; });
}

TEST_F(ForwardingTest, Fans) {
  const FanFeatObj fan(model());
  using Cmd = QueryFanSpeedCmd;
  expectForwarded<QueryFanChnlCountCmd>([&] { return fan.queryCount(); });
  expectForwarded<Cmd>(
      [&] { return fan.querySpeed(3); },
      [](const Cmd& cmd) { return paramOf(cmd).fanIndex == 3 && paramOf(cmd).unit == FanUnit::kPercent; });
  expectForwarded<Cmd>(
      [&] { return fan.queryRpm(3); },
      [](const Cmd& cmd) { return paramOf(cmd).fanIndex == 3 && paramOf(cmd).unit == FanUnit::kRpm; });
}

TEST_F(ForwardingTest, Pcie) {
  const Fen2PcieFeatObj pcie(model());
  expectForwarded<QueryPcieInfoCmd>([&] { return pcie.queryInfo(); });
  expectForwarded<QueryPcieSlotInfoCmd>([&] { return pcie.querySlotInfo(); });
  expectForwarded<QueryPcieReplayCounterCmd>([&] { return pcie.queryReplayCounter(); });
  expectForwarded<QueryPcieBar2MemInfoCmd>([&] { return pcie.queryBar2Memory(); });
  expectForwarded<StartPciePerfCmd>([&] { return pcie.startPerf(250); },
                                    [](const auto& cmd) { return paramOf(cmd).interval == 250; });
  expectForwarded<StopPciePerfCmd>([&] { return pcie.stopPerf(9); },
                                   [](const auto& cmd) { return paramOf(cmd).sessionId == 9; });
  expectForwarded<QueryPciePerfDataCmd>([&] { return pcie.queryBandWidth(9); },
                                        [](const auto& cmd) { return paramOf(cmd).sessionId == 9; });
}

TEST_F(ForwardingTest, Ecc) {
  const EccFeatObj ecc(model());
  expectForwarded<QueryEccRetiredPagesCntCmd>([&] { return ecc.queryRetiredPagesCount(); });
  expectForwarded<QueryEccRetiredPagesInfoCmd>(
      [&] { return ecc.queryRetiredPage({.cause = 1, .index = 5}); },
      [](const auto& cmd) { return paramOf(cmd).cause == 1 && paramOf(cmd).index == 5; });
  expectForwarded<QueryEccRetiredPagesPendingInfoCmd>(
      [&] { return ecc.queryPendingPage({.index = 6}); },
      [](const auto& cmd) { return paramOf(cmd).index == 6; });
  expectForwarded<QueryEccModeCmd>([&] { return ecc.queryEccMode(); });
  expectForwarded<SetEccModeCmd>([&] { return ecc.setEccMode(EccMode::kOn); },
                                 [](const auto& cmd) { return paramOf(cmd) == EccMode::kOn; });
  expectForwarded<QueryEccErrCmd>(
      [&] { return ecc.queryErrors({.errorType = 1, .counterType = 2, .location = 3}); },
      [](const auto& cmd) {
        return paramOf(cmd).errorType == 1 && paramOf(cmd).counterType == 2 && paramOf(cmd).location == 3;
      });
  expectForwarded<ClearEccErrCmd>([&] { return ecc.clearErrors(EccCounterType::kAggregate); },
                                  [](const auto& cmd) { return paramOf(cmd) == EccCounterType::kAggregate; });
}

TEST_F(ForwardingTest, Sablink) {
  const SablinkFeatObj link(model());
  const auto isLink4 = [](const auto& cmd) { return paramOf(cmd).link == 4; };
  const auto isPeer5 = [](const auto& cmd) { return paramOf(cmd).peer == 5; };
  const auto isSession6 = [](const auto& cmd) {
    return paramOf(cmd).link == 4 && paramOf(cmd).sessionId == 6;
  };
  expectForwarded<QuerySablinkSpecCmd>([&] { return link.querySpec(); });
  expectForwarded<QuerySablinkSpecCmd>([&] { return link.queryLinkCount(); });
  expectForwarded<QuerySablinkSpecCmd>([&] { return link.queryLinkSpeed(); });
  expectForwarded<QuerySablinkSpecCmd>([&] { return link.queryVersion(); });
  expectForwarded<QuerySablinkLayoutsCmd>([&] { return link.queryLayoutCount(5); }, isPeer5);
  expectForwarded<QuerySablinkStateCmd>([&] { return link.queryState(4); }, isLink4);
  expectForwarded<QuerySablinkCapStatusCmd>(
      [&] { return link.queryCapStatus({.link = 4, .capability = 1}); },
      [](const auto& cmd) { return paramOf(cmd).link == 4 && paramOf(cmd).capability == 1; });
  expectForwarded<ResetSablinkErrCounterCmd>([&] { return link.resetErrorCounter(4); },
                                             [](const auto& cmd) { return paramOf(cmd) == 4; });
  expectForwarded<QuerySablinkErrCounterCmd>(
      [&] { return link.queryErrorCounter({.link = 4, .kind = 3}); },
      [](const auto& cmd) { return paramOf(cmd).link == 4 && paramOf(cmd).kind == 3; });
  expectForwarded<QuerySablinkRemoteDevCmd>([&] { return link.queryRemoteDevice(4); }, isLink4);
  expectForwarded<QuerySablinkRemoteDevCmd>([&] { return link.queryRemoteLink(4); }, isLink4);
  expectForwarded<QuerySablinkLayoutsCmd>([&] { return link.queryLayouts(5); }, isPeer5);
  expectForwarded<QuerySablinkShortestPathsCmd>([&] { return link.queryShortestPaths(5); }, isPeer5);
  expectForwarded<StartSablinkPerfCmd>([&] { return link.startPerf(4); }, isLink4);
  expectForwarded<QuerySablinkPerfDataCmd>([&] { return link.queryBandWidth({.link = 4, .sessionId = 6}); },
                                           isSession6);
  expectForwarded<StopSablinkPerfCmd>([&] { return link.stopPerf({.link = 4, .sessionId = 6}); }, isSession6);
  expectForwarded<QuerySablinkSerdesStatusCmd>([&] { return link.querySerdesStatus(4); }, isLink4);
}

TEST_F(ForwardingTest, SablinkFields) {
  const SablinkFeatObj link(model());
  platform_.answer<QuerySablinkSpecCmd>(SablinkSpec{.linkCount = 4, .linkSpeed = 200000, .version = 200});
  platform_.answer<QuerySablinkRemoteDevCmd>(SablinkRemoteDevInfo{.sbdf = 1, .link = 2, .miscId = 3});
  platform_.answer<QuerySablinkLayoutsCmd>(std::vector<SablinkLayout>(4));
  EXPECT_EQ(link.queryLinkCount().value(), 4U);
  EXPECT_EQ(link.queryLinkSpeed().value(), 200000U);
  EXPECT_EQ(link.queryVersion().value(), 200U);
  EXPECT_EQ(link.queryRemoteLink(0).value(), 2U);
  EXPECT_EQ(link.queryRemoteDevice(0).value(), 3U);
  EXPECT_EQ(link.queryLayoutCount(1).value(), 4U);
}

TEST_F(ForwardingTest, Pfm) {
  const PfmFeatObj pfm(model());
  const auto isSession6 = [](const auto& cmd) {
    return paramOf(cmd).link == 4 && paramOf(cmd).sessionId == 6;
  };
  expectForwarded<StartPciePerfCmd>([&] { return pfm.startPciePerf({.interval = 250}); },
                                    [](const auto& cmd) { return paramOf(cmd).interval == 250; });
  expectForwarded<QueryPciePerfDataCmd>([&] { return pfm.queryPciePerfData({.sessionId = 9}); },
                                        [](const auto& cmd) { return paramOf(cmd).sessionId == 9; });
  expectForwarded<StopPciePerfCmd>([&] { return pfm.stopPciePerf({.sessionId = 9}); },
                                   [](const auto& cmd) { return paramOf(cmd).sessionId == 9; });
  expectForwarded<QueryPcieReplayCounterCmd>([&] { return pfm.queryPcieReplayCounter(); });
  expectForwarded<StartSablinkPerfCmd>([&] { return pfm.startSablinkPerf({.link = 4}); },
                                       [](const auto& cmd) { return paramOf(cmd).link == 4; });
  expectForwarded<QuerySablinkPerfDataCmd>(
      [&] { return pfm.querySablinkPerfData({.link = 4, .sessionId = 6}); }, isSession6);
  expectForwarded<StopSablinkPerfCmd>([&] { return pfm.stopSablinkPerf({.link = 4, .sessionId = 6}); },
                                      isSession6);
  expectForwarded<QuerySablinkSerdesStatusCmd>([&] { return pfm.querySablinkSerdesStatus({.link = 4}); },
                                               [](const auto& cmd) { return paramOf(cmd).link == 4; });
}

TEST_F(ForwardingTest, EventsAndMemoryErrors) {
  const EventFeatObj event(model());
  expectForwarded<ResetDeviceEventMsgsCmd>([&] { return event.resetMessages(); });
  const MemoryFeatObj memory(model());
  expectForwarded<QueryMemEdcCmd>([&] { return memory.queryEdcCounters(); });
}

TEST_F(ForwardingTest, VideoEngine) {
  const VpuFeatObj vpu(model());
  expectForwarded<QueryVpuUtilCmd>([&] { return vpu.queryUtilization(); });
  expectForwarded<QueryVpuClockCmd>([&] { return vpu.queryFrequency(); });
  expectForwarded<QueryVpuSsStatesCmd>([&] { return vpu.querySessionStates(); });
  expectForwarded<QueryVpuSsMetricsCmd>(
      [&] { return vpu.querySessionMetrics({.coreId = 2, .instance = 30}); },
      [](const auto& cmd) { return paramOf(cmd).coreId == 2 && paramOf(cmd).instance == 30; });
}

TEST_F(ForwardingTest, Vgpus) {
  const VirtualFeatObj virt(model());
  expectForwarded<QueryActiveVirtUuidsCmd>([&] { return virt.readActiveUuids(); });
  expectForwarded<QueryAvailableVirtTypesCmd>([&] { return virt.readAvailableTypes(); });
  expectForwarded<QueryAvailableVirtInstancesCmd>([&] { return virt.readAvailableInstances("11"); },
                                                  [](const auto& cmd) { return cmd.typeId == "11"; });
  expectForwarded<QueryVgpuIdCmd>([&] { return virt.readVgpuId(); });
  expectForwarded<QueryVmPidCmd>([&] { return virt.readVmPid(); });
}

TEST_F(ForwardingTest, P2p) {
  const TopologyFeatObj topology(model());
  expectForwarded<QueryP2pStatusCmd>(
      [&] { return topology.queryP2pStatus({.peer = 3, .capability = 1}); },
      [](const auto& cmd) { return paramOf(cmd).peer == 3 && paramOf(cmd).capability == 1; });
}

TEST_F(ForwardingTest, Distances) {
  const TopologyFeatObj topology(model());
  DevCuid other = tolk_test::makeCuid(DevType::kPhysical, DevArch::kFen2);
  other.sbdf = 0x1'0042'0003;
  platform_.topologyLevel = TopologyLevel::kNode;
  platform_.nics = std::vector<std::string>{"0000:17:00.0"};
  EXPECT_EQ(topology.queryLevel(other).value(), TopologyLevel::kNode);
  EXPECT_EQ(platform_.topologyOf, std::pair(std::string("0000:41:00.0"), std::string("0001:42:00.3")));
  EXPECT_EQ(topology.queryNicDevices().value(), (std::vector<std::string>{"0000:17:00.0"}));
  platform_.topologyLevel = KelpReturn::kFailure;
  platform_.nics = KelpReturn::kReadFailed;
  EXPECT_EQ(topology.queryLevel(other).state(), KelpReturn::kFailure);
  EXPECT_EQ(topology.queryNicDevices().state(), KelpReturn::kReadFailed);
}

}  // namespace
}  // namespace kelp
