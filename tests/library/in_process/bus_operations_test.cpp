#include "in_process/lumo_fixture.h"

// A device on its bus, and among the others.

namespace {

using kelp::AffinityType;
using kelp::DevArch;
using kelp::DevType;
using kelp::KelpReturn;
using kelp::TopologyLevel;
using rusk::LogLevel;
using tolk_test::LumoFixture;

class BusOperationsTest : public LumoFixture {
 protected:
  unsigned number_ = 99;
  int level_ = 99;
  char text_[64] = "before";
};

TEST_F(BusOperationsTest, TheSlotHasANumberAndAName) {
  platform_.answer<kelp::QueryPcieSlotInfoCmd>(
      kelp::PcieSlotInfo{.number = 7, .name = std::string(100, 'n')});
  startWith(DevType::kPhysical, DevArch::kTor1);
  LumoPciSlotInfo slot{};
  ASSERT_EQ(lumoDeviceGetPcieSlotInfo(handle_, &slot), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(slot.number, 7U);
  EXPECT_EQ(std::string(slot.name), std::string(63, 'n')) << "cut to the field";
}

TEST_F(BusOperationsTest, TheCountersOfTheBus) {
  platform_.answer<kelp::QueryPcieReplayCounterCmd>(5UL);
  platform_.answer<kelp::QueryPcieBar2MemInfoCmd>(kelp::PcieBar2MemInfo{.total = 3, .used = 2, .free = 1});
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned long long total = 0;
  unsigned long long used = 0;
  unsigned long long free = 0;
  EXPECT_EQ(lumoDeviceGetPcieReplayCounter(handle_, &total), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(total, 5U);
  EXPECT_EQ(lumoDeviceGetPcieBar2MemoryInfo(handle_, &total, &used, &free), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(total, 3U);
  EXPECT_EQ(used, 2U);
  EXPECT_EQ(free, 1U);
}

TEST_F(BusOperationsTest, TrafficIsMeasuredBetweenStartAndStop) {
  std::vector<unsigned> numbers;
  platform_.answerBy<kelp::StartPciePerfCmd>([&](const kelp::DevCuid&, const kelp::StartPciePerfCmd& cmd) {
    numbers.push_back(std::get<0>(cmd.params).interval);
    return kelp::Stated<unsigned>(42);
  });
  platform_.answerBy<kelp::QueryPciePerfDataCmd>(
      [&](const kelp::DevCuid&, const kelp::QueryPciePerfDataCmd& cmd) {
        numbers.push_back(std::get<0>(cmd.params).sessionId);
        kelp::PcieBandWidthData data;
        data.rxBytes = 1;
        data.txBytes = 2;
        data.rxRate = 3;
        data.txRate = 4;
        data.state = 1;
        data.rxMin = 5U;
        data.txMax = 6U;
        return kelp::Stated<kelp::PcieBandWidthData>(data);
      });
  platform_.answerBy<kelp::StopPciePerfCmd>([&](const kelp::DevCuid&, const kelp::StopPciePerfCmd& cmd) {
    numbers.push_back(std::get<0>(cmd.params).sessionId);
    return kelp::Stated<int>(0);
  });
  startWith(DevType::kPhysical, DevArch::kFen1);
  EXPECT_EQ(lumoDeviceStartPciePerf(handle_, 250, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 42U);
  LumoPcieBandWidth data{};
  EXPECT_EQ(lumoDeviceGetPcieBandWidth(handle_, 42, &data), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(data.rxBytes, 1U);
  EXPECT_EQ(data.txBytes, 2U);
  EXPECT_EQ(data.rxRate, 3U);
  EXPECT_EQ(data.txRate, 4U);
  EXPECT_EQ(data.state, 1U);
  EXPECT_EQ(data.rxMin, 5U);
  EXPECT_EQ(data.txMax, 6U);
  EXPECT_EQ(data.rxMean, LUMO_NOT_AVAILABLE);
  EXPECT_EQ(data.samples, LUMO_NOT_AVAILABLE);
  EXPECT_EQ(lumoDeviceStopPciePerf(handle_, 42), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(numbers, (std::vector<unsigned>{250, 42, 42}));
}

TEST_F(BusOperationsTest, TheFirstFamilyMeasuresNoTraffic) {
  startWith(DevType::kPhysical, DevArch::kWold);
  EXPECT_EQ(lumoDeviceStartPciePerf(handle_, 250, &number_), LUMO_RETURN_NOT_SUPPORTED);
}

TEST_F(BusOperationsTest, TheLevelIsReadFromTheAddresses) {
  addGpu(0);
  addGpu(1);
  mustStart();
  for (const int level : {-1, 0, 5}) {
    platform_.topologyLevel = static_cast<TopologyLevel>(level);
    EXPECT_EQ(lumoDeviceGetTopologyLevel(device(0), device(1), &level_), LUMO_RETURN_SUCCESS);
    EXPECT_EQ(level_, level);
  }
  EXPECT_EQ(platform_.topologyOf, std::pair(std::string("0000:40:00.0"), std::string("0000:41:00.0")));
  platform_.topologyLevel = KelpReturn::kFailure;
  EXPECT_EQ(lumoDeviceGetTopologyLevel(device(0), device(1), &level_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(level_, 5);
}

TEST_F(BusOperationsTest, ADeviceWithoutTheFeatureKnowsWhereItSitsAllTheSame) {
  startMpc(DevArch::kTor1);
  platform_.topologyLevel = TopologyLevel::kSame;
  EXPECT_EQ(lumoDeviceGetTopologyLevel(parent_, instance_, &level_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(level_, -1);
  EXPECT_EQ(platform_.topologyOf.first, "0000:42:00.0");
  EXPECT_EQ(lumoDeviceCountPciNicDevices(parent_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
  EXPECT_FALSE(log_.has("Feat not supported !"));
}

TEST_F(BusOperationsTest, FunctionsAreComparedByTheirAddresses) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  platform_.topologyLevel = TopologyLevel::kNode;
  EXPECT_EQ(lumoDeviceGetPciDeviceTopology(handle_, "0000:41:00.0", "00000000:42:00.0", &level_),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(level_, 4);
  EXPECT_EQ(platform_.topologyOf, std::pair(std::string("0000:41:00.0"), std::string("00000000:42:00.0")));
}

TEST_F(BusOperationsTest, EqualAddressesAreRefusedAsTheyAreSpelt) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  platform_.topologyLevel = TopologyLevel::kSame;
  EXPECT_EQ(lumoDeviceGetPciDeviceTopology(handle_, "0000:41:00.0", "0000:41:00.0", &level_),
            LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(level_, 99);
  EXPECT_EQ(lumoDeviceGetPciDeviceTopology(handle_, "0000:41:00.0", "00000000:41:00.0", &level_),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(level_, -1);
}

TEST_F(BusOperationsTest, DevicesAtALevelComeInTheLibrarysOrder) {
  for (const unsigned intId : {0U, 1U, 2U}) {
    addGpu(intId);
  }
  mustStart();
  platform_.topologyLevel = TopologyLevel::kNode;
  LumoDevice* found[3] = {nullptr, nullptr, nullptr};
  EXPECT_EQ(lumoDeviceCountDeviceByTopologyLevel(device(1), 4, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U) << "not the device itself";
  EXPECT_EQ(lumoDeviceGetDeviceByTopologyLevel(device(1), 4, 3, found), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(found[0], device(0));
  EXPECT_EQ(found[1], device(2));
  EXPECT_EQ(found[2], nullptr);
  EXPECT_EQ(lumoDeviceCountDeviceByTopologyLevel(device(1), 5, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 0U);
}

TEST_F(BusOperationsTest, AListOfDevicesAtALevelWantsRoomForOneMore) {
  addGpu(0);
  addGpu(1);
  mustStart();
  platform_.topologyLevel = TopologyLevel::kNode;
  LumoDevice* found[2] = {nullptr, nullptr};
  EXPECT_EQ(lumoDeviceGetDeviceByTopologyLevel(device(0), 4, 1, found), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(found[0], nullptr);
  EXPECT_EQ(lumoDeviceGetDeviceByTopologyLevel(device(0), 4, 2, found), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(found[0], device(1));
  EXPECT_EQ(lumoDeviceGetDeviceByTopologyLevel(device(0), 3, 1, found), LUMO_RETURN_SUCCESS)
      << "none is there";
  EXPECT_EQ(lumoDeviceGetDeviceByTopologyLevel(device(0), 3, 0, found), LUMO_RETURN_INSUFFICIENT_SIZE);
}

TEST_F(BusOperationsTest, AnUnreadableNeighbourFailsTheList) {
  addGpu(0);
  addGpu(1);
  mustStart();
  platform_.topologyLevel = KelpReturn::kFailure;
  EXPECT_EQ(lumoDeviceCountDeviceByTopologyLevel(device(0), 4, &number_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(number_, 99U);
}

TEST_F(BusOperationsTest, AdaptersAreTextsBehindOneAnother) {
  platform_.nics = std::vector<std::string>{"0000:81:00.0", "0000:c1:00.1"};
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceCountPciNicDevices(handle_, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, 2U);
  char list[3][16];
  std::memset(list, '#', sizeof list);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(handle_, list[0], 16, 3), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(list[0], "0000:81:00.0");
  EXPECT_STREQ(list[1], "0000:c1:00.1");
  EXPECT_EQ(std::string(list[2], 16), std::string(16, '\0'));
}

TEST_F(BusOperationsTest, AListOfAdaptersLooksAtTheWidthFirst) {
  platform_.nics = std::vector<std::string>{"0000:81:00.0", "0000:c1:00.1"};
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(handle_, text_, 0, 2), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(handle_, text_, 32, 0), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(handle_, text_, 12, 1), LUMO_RETURN_INSUFFICIENT_SIZE);
  EXPECT_EQ(lumoDeviceGetPciNicDeviceSbdf(handle_, text_, 13, 1), LUMO_RETURN_NOT_FOUND);
  EXPECT_STREQ(text_, "before");
}

class P2pTest : public BusOperationsTest {
 protected:
  P2pTest() {
    platform_.answerBy<kelp::QueryP2pStatusCmd>(
        [this](const kelp::DevCuid&, const kelp::QueryP2pStatusCmd& cmd) {
          asked_ = std::get<0>(cmd.params);
          return kelp::Stated<kelp::P2pCapStatus>(kelp::P2pCapStatus::kChipsetNotSupported);
        });
  }
  kelp::QueryP2pStatusParam asked_;
};

TEST_F(P2pTest, TheDriverKnowsThePeerByItsNumber) {
  addGpu(0);
  addGpu(5);
  mustStart();
  EXPECT_EQ(lumoDeviceGetP2PStatus(device(0), device(1), 1, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, static_cast<unsigned>(LUMO_P2P_CHIPSET_NOT_SUPPORTED));
  EXPECT_EQ(asked_.peer, 5U);
  EXPECT_EQ(asked_.capability, 1U);
}

TEST_F(P2pTest, ADeviceAndItselfAreNotAsked) {
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetP2PStatus(handle_, handle_, 0, &number_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(number_, static_cast<unsigned>(LUMO_P2P_GPU_NOT_SUPPORTED));
  EXPECT_EQ(platform_.count("QueryP2pStatus"), 0U);
}

TEST_F(P2pTest, AnInstanceHasNoPeers) {
  addGpu(0, DevType::kPhysical, DevArch::kFen2);
  startMpc();
  LumoDevice* const whole = deviceOf("uuid-0");
  EXPECT_EQ(lumoDeviceGetP2PStatus(whole, instance_, 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetP2PStatus(instance_, whole, 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetP2PStatus(instance_, instance_, 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetP2PStatus(whole, parent_, 0, &number_), LUMO_RETURN_SUCCESS);
}

TEST_F(P2pTest, ADividedGpuOfTheNewestFamilyHasNobodyToAsk) {
  addGpu(0);
  startMpc(DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetP2PStatus(parent_, deviceOf("uuid-0"), 0, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_TRUE(log_.has(LogLevel::kError, ":getP2pStatus >> Feat not supported ! "));
}

TEST_F(BusOperationsTest, AffinityIsATextAndAMask) {
  platform_.answerBy<kelp::QueryAffinityWithinNodeCmd>(
      [](const kelp::DevCuid&, const kelp::QueryAffinityWithinNodeCmd& cmd) -> kelp::Stated<std::string> {
        switch (cmd.type) {
          case AffinityType::kCpuList:
            return std::string("0-15");
          case AffinityType::kCpuBitmask:
            return std::string("0000ffff,00000001");
          case AffinityType::kMemory:
            return std::string("1");
        }
        return KelpReturn::kBadArgument;
      });
  startWith(DevType::kPhysical, DevArch::kTor1);
  EXPECT_EQ(lumoDeviceGetCpuAffinityStringWithinNode(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "0-15");
  EXPECT_EQ(lumoDeviceGetMemoryAffinityStringWithinNode(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "1");
  unsigned long long mask[2] = {9, 9};
  EXPECT_EQ(lumoDeviceGetCpuAffinityWithinNode(handle_, mask, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 0xFFFFU);
  EXPECT_EQ(mask[1], 0U);
  EXPECT_EQ(lumoDeviceGetCpuAffinityBitmaskWithinNode(handle_, mask, 2), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 0x1'0000'FFFFU);
  EXPECT_EQ(mask[1], 0U);
  EXPECT_EQ(lumoDeviceGetMemoryAffinityWithinNode(handle_, mask, 1), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(mask[0], 2U);
}

TEST_F(BusOperationsTest, AMachineWithoutNodesHasNoMask) {
  platform_.answer<kelp::QueryAffinityWithinNodeCmd>(std::string("-1"));
  startWith(DevType::kPhysical, DevArch::kTor1);
  unsigned long long mask = 9;
  EXPECT_EQ(lumoDeviceGetMemoryAffinityWithinNode(handle_, &mask, 1), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(mask, 9U);
  EXPECT_EQ(lumoDeviceGetMemoryAffinityStringWithinNode(handle_, text_, sizeof text_), LUMO_RETURN_SUCCESS);
  EXPECT_STREQ(text_, "-1");
}

TEST_F(BusOperationsTest, AnAddressWithAnotherSeparatorIsWellFormed) {
  addGpuAt(1, 0, "uuid-0");
  mustStart();
  LumoDevice* found = nullptr;
  EXPECT_EQ(lumoLibraryInitDeviceByPciSbdf(library_, "0000:01:00x0", &found), LUMO_RETURN_NOT_FOUND)
      << "well formed, though it names nothing";
}

}  // namespace
