#include "on_hosts/values_fixture.h"

// Arguments out of their range, on devices that answer when they are in range.

namespace {

using tolk_test::ask;
using tolk_test::ValuesHost;

#define EXPECT_INVALID(call) EXPECT_EQ(call, LUMO_RETURN_INVALID_ARGUMENT) << #call
#define EXPECT_TOO_SMALL(call) EXPECT_EQ(call, LUMO_RETURN_INSUFFICIENT_SIZE) << #call

class ValuesHostRanges : public ValuesHost {
 protected:
  void SetUp() override {
    ValuesHost::SetUp();
    on_ = of(kTor1);
  }
  tolk_test::Subject on_;
  unsigned number_ = 99;
  unsigned long long wide_ = 99;
  int level_ = 99;
};

TEST_F(ValuesHostRanges, OfTheBoard) {
  EXPECT_INVALID(lumoDeviceSetPowerLimitWithPersistentOption(on_, 200000, 2));
  EXPECT_INVALID(lumoDeviceSetPerformanceState(on_, 16));
  EXPECT_INVALID(lumoDeviceGetFanSpeed(on_, ~0U, &number_));
  EXPECT_INVALID(lumoDeviceGetFanRpm(on_, ~0U, &number_));
  LumoDispIntfSpec spec;
  EXPECT_INVALID(lumoDeviceGetDisplayInterfaceSpec(on_, ~0U, &spec));
  EXPECT_EQ(number_, 99U);
}

TEST_F(ValuesHostRanges, OfTheGpu) {
  EXPECT_INVALID(lumoGpuGetEngineUtilization(on_, 4, &number_));
  EXPECT_INVALID(lumoGpuGetCoreUtilization(on_, 2, &number_));
  EXPECT_INVALID(lumoGpuCountCoreMpx(on_, 0, &number_));
  EXPECT_INVALID(lumoGpuCountCoreMpx(on_, 1ULL << 63, &number_));
  EXPECT_EQ(number_, 99U);
}

TEST_F(ValuesHostRanges, OfTheMemory) {
  LumoRetiredPage page;
  EXPECT_INVALID(lumoMemorySetEccMode(on_, 2));
  EXPECT_INVALID(lumoMemoryGetRetiredPages(on_, 2, 1, &page));
  EXPECT_INVALID(lumoMemoryGetRetiredPages(on_, 0, 0, &page));
  EXPECT_INVALID(lumoMemoryGetEccErrorCounter(on_, 2, 1, 0, &wide_));
  EXPECT_INVALID(lumoMemoryGetEccErrorCounter(on_, 0, 0, 0, &wide_));
  EXPECT_INVALID(lumoMemoryGetEccErrorCounter(on_, 0, 2, 0, &wide_));
  EXPECT_INVALID(lumoMemoryGetEccErrorCounter(on_, 0, 1, 2, &wide_));
  EXPECT_INVALID(lumoMemoryClearEccErrorCounter(on_, 2));
  EXPECT_EQ(wide_, 99U);
}

TEST_F(ValuesHostRanges, OfTheVideoEngine) {
  EXPECT_TOO_SMALL(lumoVpuGetEncoderSessionStates(on_, &number_, 0));
  EXPECT_TOO_SMALL(lumoVpuGetDecoderSessionStates(on_, &number_, 0));
  LumoVpuSessionMetrics metrics;
  EXPECT_INVALID(lumoVpuGetEncoderSessionMetrics(on_, ~0U, &metrics));
  EXPECT_INVALID(lumoVpuGetDecoderSessionMetrics(on_, ~0U, &metrics));
  EXPECT_EQ(number_, 99U);
}

TEST_F(ValuesHostRanges, OfNeighbours) {
  LumoDevice* found = nullptr;
  EXPECT_INVALID(lumoDeviceCountDeviceByTopologyLevel(on_, 6, &number_));
  EXPECT_INVALID(lumoDeviceGetDeviceByTopologyLevel(on_, 6, 1, &found));
  EXPECT_INVALID(lumoDeviceGetP2PStatus(on_, device(kFen2), 2, &number_));
  EXPECT_INVALID(lumoDeviceGetPciDeviceTopology(on_, nullptr, "0000:01:00.0", &level_));
  EXPECT_INVALID(lumoDeviceGetPciDeviceTopology(on_, "0000:01:00.0", nullptr, &level_));
  EXPECT_INVALID(lumoDeviceGetPciDeviceTopology(on_, "01:00.0", "0000:01:00.0", &level_));
  EXPECT_EQ(lumoDeviceGetPciDeviceTopology(on_, "0000:01:00.0", "0000:01:00.0", &level_),
            LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetPciDeviceTopology(on_, "0000:01:00.0", "00000000:01:00.0", &level_),
            LUMO_RETURN_SUCCESS);
  EXPECT_EQ(level_, LUMO_TOPOLOGY_SAME);
  char text[32];
  EXPECT_TOO_SMALL(lumoDeviceGetPciNicDeviceSbdf(on_, text, 0, 1));
  EXPECT_TOO_SMALL(lumoDeviceGetPciNicDeviceSbdf(on_, text, 32, 0));
  EXPECT_INVALID(lumoDeviceGetCpuAffinityWithinNode(on_, &wide_, 0));
  EXPECT_INVALID(lumoDeviceGetMemoryAffinityWithinNode(on_, &wide_, 0));
  EXPECT_INVALID(lumoDeviceGetCpuAffinityBitmaskWithinNode(on_, &wide_, 0));
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(wide_, 99U);
}

TEST_F(ValuesHostRanges, OfLinks) {
  LumoDevice* remote = nullptr;
  LumoSablinkPerfData data;
  LumoSablinkSerdesStatus lanes;
  for (const unsigned link : {2U, ~0U}) {
    EXPECT_INVALID(lumoDeviceGetSablinkState(on_, link, &number_));
    EXPECT_INVALID(lumoDeviceGetSablinkCapStatus(on_, link, 0, &number_));
    EXPECT_INVALID(lumoDeviceGetSablinkErrorCounter(on_, link, 0, &wide_));
    EXPECT_INVALID(lumoDeviceResetSablinkErrorCounter(on_, link));
    EXPECT_INVALID(lumoDeviceGetSablinkRemoteDevice(on_, link, &remote));
    EXPECT_INVALID(lumoDeviceGetSablinkRemoteLink(on_, link, &number_));
    EXPECT_INVALID(lumoDeviceStartSablinkPerf(on_, link, &number_, &number_));
    EXPECT_INVALID(lumoDeviceGetSablinkPerfData(on_, link, 1, &data));
    EXPECT_INVALID(lumoDeviceStopSablinkPerf(on_, link, 1, &number_));
    EXPECT_INVALID(lumoDeviceGetSablinkSerdesStatus(on_, link, &lanes));
  }
  EXPECT_INVALID(lumoDeviceGetSablinkErrorCounter(on_, 0, 6, &wide_));
  EXPECT_INVALID(lumoDeviceGetSablinkCapStatus(on_, 0, 2, &number_));
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(wide_, 99U);
  EXPECT_EQ(remote, nullptr);
}

TEST_F(ValuesHostRanges, OfEvents) {
  LumoEventData event;
  EXPECT_EQ(lumoDeviceGetEventDataByEventType(on_, 2, &event, 1, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_EQ(lumoDeviceGetEventDataByEventType(on_, 0, &event, 1, &number_), LUMO_RETURN_NOT_SUPPORTED);
  EXPECT_INVALID(lumoGetTargetUuidEventDataByEventType(nullptr, LUMO_EVENT_XID, &event, 1, &number_));
  EXPECT_INVALID(lumoGetTargetUuidEventDataByEventType("u", LUMO_EVENT_XID, nullptr, 1, &number_));
  EXPECT_INVALID(lumoGetTargetUuidEventDataByEventType("u", LUMO_EVENT_XID, &event, 1, nullptr));
  EXPECT_EQ(number_, 99U);
}

TEST_F(ValuesHostRanges, OfVgpus) {
  LumoDevice* vgpu = nullptr;
  char text[64];
  EXPECT_INVALID(lumoDeviceCountMaxVirtDevices(on_, nullptr, &number_));
  EXPECT_INVALID(lumoDeviceCountAvailableVirtDevices(on_, nullptr, &number_));
  EXPECT_INVALID(lumoDeviceInitVirtDevice(on_, nullptr, &vgpu));
  EXPECT_EQ(lumoDeviceInitVirtDevice(on_, "../0000:01:00.0", &vgpu), LUMO_RETURN_NOT_FOUND);
  EXPECT_TOO_SMALL(lumoDeviceGetActiveVirtDeviceUuids(on_, text, 0, 1));
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(vgpu, nullptr);
}

TEST_F(ValuesHostRanges, OfTheBatch) {
  LumoDevice* device = on_;
  unsigned id = 0;
  EXPECT_INVALID(lumoLibrarySetMpcConfigurationInBatch(nullptr, 1, &device, &id));
  EXPECT_INVALID(lumoLibrarySetMpcConfigurationInBatch(library_, 1, nullptr, &id));
  EXPECT_INVALID(lumoLibrarySetMpcConfigurationInBatch(library_, 1, &device, nullptr));
  device = nullptr;
  EXPECT_INVALID(lumoLibrarySetMpcConfigurationInBatch(library_, 1, &device, &id));
}

TEST_F(ValuesHostRanges, OfTheLogsConfiguration) {
  LumoLogConfiguration before;
  ASSERT_EQ(lumoLibraryGetLogConfiguration(&before), LUMO_RETURN_SUCCESS);
  for (unsigned LumoLogConfiguration::*level :
       {&LumoLogConfiguration::consoleLevel, &LumoLogConfiguration::fileLevel,
        &LumoLogConfiguration::callbackLevel}) {
    LumoLogConfiguration wrong = before;
    wrong.*level = 5;
    EXPECT_INVALID(lumoLibrarySetLogConfiguration(&wrong));
    EXPECT_INVALID(lumoLogSetConfiguration(&wrong));
  }
}

}  // namespace
