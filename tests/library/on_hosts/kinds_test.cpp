#include <algorithm>
#include <string>

#include "calls/ask.h"
#include "calls/operations.h"
#include "on_hosts/host_fixture.h"

// Which kind of device of which family answers what: each operation on a device of each kind that has all
// that its kind can have.

namespace {

using tolk_test::Operation;
using tolk_test::Subject;

/// 'y' where the device answers, the code where it refuses, 'u' for 999. The places are those of the
/// hosts below: physical GPUs of Wold, Fen1, Fen2 and Tor1; parent and instance of Fen1, Fen2 and Tor1; a
/// mediated device of Fen1; guests of Fen1 and Fen2.
struct Row {
  const char* operation;
  const char* answers;
};

constexpr Row kRows[] = {
    {"lumoDeviceInitGpu", "yyyy yy yy yy y yy"},
    {"lumoDeviceInitMemory", "yyyy yy yy yy y yy"},
    {"lumoDeviceInitVpu", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetIndex", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetType", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetIntId", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetUUID", "yyyy yy yy yy y uu"},
    {"lumoDeviceGetName", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetBrand", "yyyy yy yy yy 4 44"},
    {"lumoDeviceGetSerialNumber", "yyyy yy yy yy 4 44"},
    {"lumoDeviceGetOvBiosVersion", "yyyy yy yy yy 4 44"},
    {"lumoDeviceGetRtosVersion", "yyyy yy yy yy 4 44"},
    {"lumoDeviceGetProperty", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetComputeCapability", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetCoreCount", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetUsableCores", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetCoreUnits", "444y 44 44 44 4 44"},
    {"lumoDeviceGetMiscPath", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetCardPath", "yyyy 4y 4y 4y 4 yy"},
    {"lumoDeviceGetRenderPath", "yyyy 4y 4y 4y 4 yy"},
    {"lumoDeviceGetIonPath", "yyyy yy yy yy 4 yy"},

    {"lumoDeviceGetPciInfo", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetPcieSlotInfo", "yyyy yy yy 44 4 yy"},
    {"lumoDeviceGetPcieReplayCounter", "yyyy yy yy 44 4 yy"},
    {"lumoDeviceGetPcieBar2MemoryInfo", "yyyy yy yy 44 4 yy"},
    {"lumoDeviceStartPciePerf", "4yyy y4 y4 44 4 44"},
    {"lumoDeviceGetPcieBandWidth", "4yyy y4 y4 44 4 44"},
    {"lumoDeviceStopPciePerf", "4yyy y4 y4 44 4 44"},
    {"lumoDeviceCountFan", "yyyy yy yy 44 4 44"},
    {"lumoDeviceGetFanSpeed", "yyyy yy yy 44 4 44"},
    {"lumoDeviceGetFanRpm", "yyyy yy yy 44 4 44"},
    {"lumoDeviceGetPowerUsage", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetDefaultPowerLimit", "444y 44 44 yy 4 44"},
    {"lumoDeviceGetEnforcedPowerLimit", "444y 44 44 yy 4 44"},
    {"lumoDeviceGetPowerLimit", "444y 44 44 yy 4 44"},
    {"lumoDeviceGetPowerLimitConstraints", "444y 44 44 yy 4 44"},
    {"lumoDeviceSetPowerLimitWithPersistentOption", "444y 44 44 44 4 44"},
    {"lumoDeviceGetPerformanceState", "yyyy 44 44 44 4 44"},
    {"lumoDeviceSetPerformanceState", "yyyy 44 44 44 4 44"},
    {"lumoDeviceCountDisplayInterface", "yyyy y4 y4 44 4 44"},
    {"lumoDeviceGetDisplayInterfaceSpec", "yyyy y4 y4 44 4 44"},
    {"lumoDeviceResetEventMessages", "yyyy 44 44 44 4 44"},

    {"lumoDeviceGetTopologyLevel", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetPciDeviceTopology", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetDeviceByTopologyLevel", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetPciNicDeviceSbdf", "yyyy yy yy yy y yy"},
    {"lumoDeviceGetP2PStatus", "yyyy y4 y4 44 4 yy"},
    {"lumoDeviceGetCpuAffinityStringWithinNode", "yyyy y4 y4 y4 4 44"},
    {"lumoDeviceGetMemoryAffinityStringWithinNode", "yyyy y4 y4 y4 4 44"},
    {"lumoDeviceGetCpuAffinityWithinNode", "yyyy y4 y4 y4 4 44"},
    {"lumoDeviceGetMemoryAffinityWithinNode", "yyyy y4 y4 y4 4 44"},
    {"lumoDeviceGetCpuAffinityBitmaskWithinNode", "yyyy y4 y4 y4 4 44"},

    {"lumoDeviceGetProcessMemoryUsages", "yyyy yy yy yy 4 yy"},
    {"lumoDeviceGetProcessGpuUtilizations", "yyyy yy yy yy 4 yy"},

    {"lumoDeviceGetMpcMode", "4yy4 yy yy yy 4 44"},
    {"lumoDeviceGetSupportedMpcProfiles", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetSupportedMpcConfigurations", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetMpcConfiguration", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetMpcConfigurationByName", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetMpcInstances", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetMpcInstanceByProfile", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceGetMpcParentDevice", "4444 4y 4y 4y 4 44"},
    {"lumoDeviceGetMpcInstanceIndex", "4444 4y 4y 4y 4 44"},
    {"lumoDeviceGetMpcProfileInfo", "4444 4y 4y 4y 4 44"},

    {"lumoDeviceGetSablinkSpec", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkState", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkCapStatus", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkErrorCounter", "44yy 44 y4 44 4 44"},
    {"lumoDeviceResetSablinkErrorCounter", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkRemoteDevice", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkRemoteLink", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkLayouts", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkShortestPaths", "44yy 44 y4 44 4 44"},
    {"lumoDeviceStartSablinkPerf", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkPerfData", "44yy 44 y4 44 4 44"},
    {"lumoDeviceStopSablinkPerf", "44yy 44 y4 44 4 44"},
    {"lumoDeviceGetSablinkSerdesStatus", "44yy 44 y4 44 4 44"},

    // Without vGPUs these are empty lists, and a type or a vGPU is not found.
    {"lumoDeviceGetSupportedVirtTypes", "yyyy y4 y4 44 4 44"},
    {"lumoDeviceGetAvailableVirtTypes", "yyyy y4 y4 44 4 44"},
    {"lumoDeviceCountMaxVirtDevices", "7777 74 74 44 4 44"},
    {"lumoDeviceCountAvailableVirtDevices", "7777 74 74 44 4 44"},
    {"lumoDeviceGetActiveVirtDeviceUuids", "yyyy y4 y4 44 4 44"},
    {"lumoDeviceInitVirtDevice", "7777 77 77 77 4 77"},
    {"lumoDeviceGetVirtType", "4444 44 44 44 y 44"},
    {"lumoDeviceGetVgpuId", "4444 44 44 44 y 44"},
    {"lumoDeviceGetVmPid", "4444 44 44 44 y 44"},
    {"lumoDeviceGetVgpuOverCommitInfo", "4444 44 44 44 y 44"},

    {"lumoGpuGetUtilization", "yyyy yy yy 44 4 yy"},
    {"lumoGpuGetGuestUtilization", "yyyy 4y 4y 44 y 44"},
    {"lumoGpuGetEngineUtilization", "yyyy 44 44 44 4 yy"},
    {"lumoGpuGetCoreUtilization", "yyyy yy yy 44 4 yy"},
    {"lumoGpuGetMemoryControllerUtilization", "yyyy y4 y4 44 4 44"},
    {"lumoGpuGetTemperature", "yyyy yy yy 44 4 44"},
    {"lumoGpuGetSensorTemperature", "yyyy yy yy 44 4 44"},
    {"lumoGpuGetMaxTemperature", "4yyy y4 y4 44 4 44"},
    {"lumoGpuGetClock", "yyyy yy yy 44 4 yy"},
    {"lumoGpuGetMaxClock", "4444 44 44 44 4 44"},
    {"lumoGpuCountCoreMpx", "444y 44 44 44 4 44"},
    {"lumoGpuGetThermalSlowdownStatistics", "444y 44 44 44 4 44"},
    {"lumoGpuResetHwErrorCounts", "yyyy 44 44 44 4 44"},
    {"lumoGpuReset", "yyyy 44 44 44 4 44"},

    {"lumoMemoryGetTotal", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetUsed", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetUtilization", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetSystemTotal", "4444 44 44 44 4 44"},
    {"lumoMemoryGetGuestReserved", "4444 44 44 44 4 44"},
    {"lumoMemoryGetGuestTotal", "4444 44 44 44 y 44"},
    {"lumoMemoryGetGuestUsed", "4444 44 44 44 y 44"},
    {"lumoMemoryGetGuestUtilization", "4444 44 44 44 y 44"},
    {"lumoMemoryGetClock", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetMaxClock", "4444 44 44 44 4 44"},
    {"lumoMemoryGetBusWidth", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetBandwidth", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetSpeed", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetVendor", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetType", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetEdcCounters", "yyyy yy yy 44 4 yy"},
    {"lumoMemoryGetEccMode", "444y 44 44 44 4 44"},
    {"lumoMemoryGetRetiredPagesCount", "444y 44 44 44 4 44"},
    {"lumoMemoryGetRetiredPages", "444y 44 44 44 4 44"},
    {"lumoMemoryGetRetiredPagesPendingStatus", "444y 44 44 44 4 44"},
    {"lumoMemoryGetEccErrorCounter", "444y 44 44 44 4 44"},
    {"lumoMemoryClearEccErrorCounter", "444y 44 44 44 4 44"},
    {"lumoMemorySetEccMode", "444y 44 44 44 4 44"},

    {"lumoVpuGetUtilization", "yyyy 4y 4y 44 4 yy"},
    {"lumoVpuGetClock", "yyyy 4y 4y 44 4 yy"},
    {"lumoVpuGetMaxClock", "4444 44 44 44 4 44"},
    {"lumoVpuGetCodecCapacity", "yyyy 4y 4y 44 4 yy"},
    {"lumoVpuGetEncoderSessionStates", "yyyy 4y 4y 44 y yy"},
    {"lumoVpuGetDecoderSessionStates", "yyyy 4y 4y 44 y yy"},
    {"lumoVpuGetEncoderSessionMetrics", "yyyy 4y 4y 44 y yy"},
    {"lumoVpuGetDecoderSessionMetrics", "yyyy 4y 4y 44 y yy"},

    {"lumoDeviceGetSupportedEventTypes", "yyyy yy yy yy y yy"},
    // No device of these hosts has stored events.
    {"lumoDeviceGetEventDataByEventType", "uuuu uu uu uu 4 uu"},
    {"lumoDeviceIsPfmSupported", "yyyy yy yy yy y yy"},
    {"lumoDeviceStartPfm", "4444 44 44 44 4 44"},
    {"lumoDeviceStopPfm", "4444 44 44 44 4 44"},

    // Last, as they change what there is.
    {"lumoDeviceReset", "yyyy 44 44 44 4 44"},
    {"lumoDeviceSetMpcConfiguration", "4444 y4 y4 y4 4 44"},
    {"lumoDeviceSetMpcMode", "4yy4 y4 y4 y4 4 44"},
};

/// One character for an answer.
char kindOf(const std::string& text) {
  const std::string refused = "refused ";
  const std::size_t place = text.rfind(refused);
  if (text.starts_with(tolk_test::kFault)) {
    return '!';
  }
  if (place == std::string::npos) {
    return 'y';
  }
  const int code = std::stoi(text.substr(place + refused.size()));
  return code == LUMO_RETURN_UNKNOWN_ERROR ? 'u' : static_cast<char>('0' + code);
}

std::string nameOf(const testing::TestParamInfo<Row>& info) {
  return info.param.operation;
}

class Kinds : public tolk_test::HostFixture, public testing::WithParamInterface<Row> {
 protected:
  /// The answers of some devices in a row, beside the part of the table that they stand for.
  void compare(std::size_t from, std::size_t places, const auto& subjectAt) {
    std::string expected;
    for (const char c : std::string(GetParam().answers)) {
      expected += c == ' ' ? "" : std::string(1, c);
    }
    ASSERT_EQ(expected.size(), 13U);
    const Operation& asked = tolk_test::operation(GetParam().operation);
    std::string answers;
    std::string texts;
    for (std::size_t i = 0; i < places; ++i) {
      const std::string text = asked.ask(subjectAt(static_cast<unsigned>(i)));
      answers += kindOf(text);
      texts += "\n  " + std::to_string(i) + ": " + text;
    }
    EXPECT_EQ(answers, expected.substr(from, places)) << texts;
  }
};

class KindsHost : public Kinds {};

TEST_P(KindsHost, AnswersAsItsKindDoes) {
  ASSERT_EQ(count(), 10U);
  // The other one is a device that has all links too.
  compare(0, 10, [this](unsigned index) { return Subject::of(device(index), device(index == 2 ? 3 : 2)); });
}
INSTANTIATE_TEST_SUITE_P(All, KindsHost, testing::ValuesIn(kRows), nameOf);

class KindsGuestsHost : public Kinds {};

TEST_P(KindsGuestsHost, AnswersAsItsKindDoes) {
  ASSERT_EQ(count(), 2U) << "a guest of Wold or Tor1 is no device";
  compare(11, 2, [this](unsigned index) { return Subject::of(device(index), device(1 - index)); });
}
INSTANTIATE_TEST_SUITE_P(All, KindsGuestsHost, testing::ValuesIn(kRows), nameOf);

class KindsVgpusHost : public Kinds {};

TEST_P(KindsVgpusHost, AnswersAsItsKindDoes) {
  LumoDevice* vgpu = nullptr;
  ASSERT_EQ(lumoDeviceInitVirtDevice(device(0), "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71", &vgpu),
            LUMO_RETURN_SUCCESS);
  compare(10, 1, [&](unsigned) { return Subject::of(vgpu, device(0)); });
}
INSTANTIATE_TEST_SUITE_P(All, KindsVgpusHost, testing::ValuesIn(kRows), nameOf);

TEST(KindsHostTable, HasEveryOperation) {
  for (const auto table : {tolk_test::readings(), tolk_test::changes()}) {
    for (const Operation& operation : table) {
      EXPECT_TRUE(std::ranges::any_of(kRows, [&](const Row& row) { return row.operation == operation.name; }))
          << operation.name;
    }
  }
}

}  // namespace
