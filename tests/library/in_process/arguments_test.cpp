#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <tuple>

#include "handles.h"
#include "in_process/lumo_fixture.h"

// Every function with a null in the place of each pointer, and on handles whose objects are gone.

namespace {

using tolk_test::LumoFixture;

struct Row {
  const char* name;
  bool hasHandle;
  std::function<LumoReturn()> call;
  /// The same call, once for each pointer, with a null in its place.
  std::vector<std::function<LumoReturn()>> nulls;
};

template <std::size_t place, class Function, class Arguments>
void addNull(Row& row, Function function, Arguments arguments) {
  using Argument = std::tuple_element_t<place, Arguments>;
  if constexpr (std::is_pointer_v<Argument>) {
    std::get<place>(arguments) = nullptr;
    row.nulls.emplace_back([=] { return std::apply(function, arguments); });
  }
}

template <class... Parameters>
Row makeRow(const char* name, bool hasHandle, LumoReturn (*function)(Parameters...),
            std::type_identity_t<Parameters>... arguments) {
  const std::tuple<Parameters...> all(arguments...);
  Row row{
      .name = name, .hasHandle = hasHandle, .call = [=] { return std::apply(function, all); }, .nulls = {}};
  [&]<std::size_t... places>(std::index_sequence<places...>) {
    (addNull<places>(row, function, all), ...);
  }
  (std::index_sequence_for<Parameters...>());
  return row;
}

#define ON_DEAD(function, ...) makeRow(#function, true, function, __VA_ARGS__)
#define WITHOUT_HANDLE(function, ...) makeRow(#function, false, function, __VA_ARGS__)

/// Handles whose objects are gone, and room for every result.
class ArgumentsTest : public LumoFixture {
 protected:
  std::vector<Row> rows();

  LumoLibrary noLibrary_;
  LumoSystem system_;
  LumoDevice device_;
  LumoDevice other_;
  LumoGpu gpu_;
  LumoMemory memory_;
  LumoVpu vpu_;
  LumoSystem* systemOut_ = nullptr;
  LumoDevice* devices_[4] = {&device_, &device_, &device_, &device_};
  LumoGpu* gpuOut_ = nullptr;
  LumoMemory* memoryOut_ = nullptr;
  LumoVpu* vpuOut_ = nullptr;
  char text_[256] = "before";
  unsigned number_ = 99;
  unsigned second_ = 99;
  int level_ = 99;
  unsigned long long wide_ = 99;
  unsigned long long wide2_ = 99;
  unsigned long long wide3_ = 99;
  LumoPciInfo pci_{};
  LumoPciSlotInfo slot_{};
  LumoPcieBandWidth bandWidth_{};
  LumoDispIntfSpec display_{};
  LumoProcessMemUsage usage_{};
  LumoProcessGpuUtilization share_{};
  LumoMpcProfile profile_{};
  LumoMpcConfiguration configuration_{};
  LumoSablinkSpec spec_{};
  LumoSablinkLayout layout_{};
  LumoSablinkPath path_{};
  LumoSablinkPerfData perf_{};
  LumoSablinkSerdesStatus serdes_{};
  LumoVirtType type_{};
  LumoVgpuOverCommitInfo overCommit_{};
  LumoMemoryEdcCounters edc_{};
  LumoRetiredPage page_{};
  LumoVpuUtilization vpuUtilization_{};
  LumoVpuSessionMetrics metrics_{};
  LumoEventData event_{};
  LumoPfmSample sample_{};
  LumoPfmSample* sampleOut_ = nullptr;
  LumoEvent foreignEvent_;  ///< none of the library's
  LumoEvent* eventOut_ = nullptr;
  LumoLogConfiguration log_configuration_{};
};

std::vector<Row> ArgumentsTest::rows() {
  const unsigned size = sizeof text_;
  return {
      ON_DEAD(lumoSystemGetDriverVersion, &system_, text_, size),
      ON_DEAD(lumoSystemGetProcessName, &system_, 1, text_, size),

      ON_DEAD(lumoDeviceInitGpu, &device_, &gpuOut_),
      ON_DEAD(lumoDeviceInitMemory, &device_, &memoryOut_),
      ON_DEAD(lumoDeviceInitVpu, &device_, &vpuOut_),
      ON_DEAD(lumoDeviceGetIndex, &device_, &number_),
      ON_DEAD(lumoDeviceGetType, &device_, &number_),
      ON_DEAD(lumoDeviceGetIntId, &device_, &wide_),
      ON_DEAD(lumoDeviceGetUUID, &device_, text_, size),
      ON_DEAD(lumoDeviceGetName, &device_, text_, size),
      ON_DEAD(lumoDeviceGetBrand, &device_, &number_),
      ON_DEAD(lumoDeviceGetSerialNumber, &device_, text_, size),
      ON_DEAD(lumoDeviceGetOvBiosVersion, &device_, text_, size),
      ON_DEAD(lumoDeviceGetRtosVersion, &device_, text_, size),
      ON_DEAD(lumoDeviceGetProperty, &device_, &wide_),
      ON_DEAD(lumoDeviceGetComputeCapability, &device_, &number_, &second_),
      ON_DEAD(lumoDeviceGetCoreCount, &device_, &number_),
      ON_DEAD(lumoDeviceGetUsableCores, &device_, &wide_),
      ON_DEAD(lumoDeviceCountCoreUnits, &device_, &number_),
      ON_DEAD(lumoDeviceGetCoreUnits, &device_, &number_, 1),
      ON_DEAD(lumoDeviceGetMiscPath, &device_, text_, size),
      ON_DEAD(lumoDeviceGetCardPath, &device_, text_, size),
      ON_DEAD(lumoDeviceGetRenderPath, &device_, text_, size),
      ON_DEAD(lumoDeviceGetIonPath, &device_, text_, size),

      ON_DEAD(lumoDeviceGetPciInfo, &device_, &pci_),
      ON_DEAD(lumoDeviceGetPcieSlotInfo, &device_, &slot_),
      ON_DEAD(lumoDeviceGetPcieReplayCounter, &device_, &wide_),
      ON_DEAD(lumoDeviceGetPcieBar2MemoryInfo, &device_, &wide_, &wide2_, &wide3_),
      ON_DEAD(lumoDeviceStartPciePerf, &device_, 100, &number_),
      ON_DEAD(lumoDeviceGetPcieBandWidth, &device_, 1, &bandWidth_),
      ON_DEAD(lumoDeviceStopPciePerf, &device_, 1),

      ON_DEAD(lumoDeviceCountFan, &device_, &number_),
      ON_DEAD(lumoDeviceGetFanSpeed, &device_, 0, &number_),
      ON_DEAD(lumoDeviceGetFanRpm, &device_, 0, &number_),
      ON_DEAD(lumoDeviceGetPowerUsage, &device_, &number_),
      ON_DEAD(lumoDeviceGetDefaultPowerLimit, &device_, &number_),
      ON_DEAD(lumoDeviceGetEnforcedPowerLimit, &device_, &number_),
      ON_DEAD(lumoDeviceGetPowerLimit, &device_, &number_),
      ON_DEAD(lumoDeviceGetPowerLimitConstraints, &device_, &number_, &second_),
      ON_DEAD(lumoDeviceSetPowerLimitWithPersistentOption, &device_, 250000, 0),
      ON_DEAD(lumoDeviceGetPerformanceState, &device_, &number_),
      ON_DEAD(lumoDeviceSetPerformanceState, &device_, 0),
      ON_DEAD(lumoDeviceCountDisplayInterface, &device_, &number_),
      ON_DEAD(lumoDeviceGetDisplayInterfaceSpec, &device_, 0, &display_),
      ON_DEAD(lumoDeviceReset, &device_),
      ON_DEAD(lumoDeviceResetEventMessages, &device_),

      ON_DEAD(lumoDeviceGetTopologyLevel, &device_, &other_, &level_),
      ON_DEAD(lumoDeviceGetPciDeviceTopology, &device_, "0000:41:00.0", "0000:42:00.0", &level_),
      ON_DEAD(lumoDeviceCountDeviceByTopologyLevel, &device_, 5, &number_),
      ON_DEAD(lumoDeviceGetDeviceByTopologyLevel, &device_, 5, 4, devices_),
      ON_DEAD(lumoDeviceCountPciNicDevices, &device_, &number_),
      ON_DEAD(lumoDeviceGetPciNicDeviceSbdf, &device_, text_, 32, 4),
      ON_DEAD(lumoDeviceGetP2PStatus, &device_, &other_, 0, &number_),
      ON_DEAD(lumoDeviceGetCpuAffinityStringWithinNode, &device_, text_, size),
      ON_DEAD(lumoDeviceGetMemoryAffinityStringWithinNode, &device_, text_, size),
      ON_DEAD(lumoDeviceGetCpuAffinityWithinNode, &device_, &wide_, 1),
      ON_DEAD(lumoDeviceGetMemoryAffinityWithinNode, &device_, &wide_, 1),
      ON_DEAD(lumoDeviceGetCpuAffinityBitmaskWithinNode, &device_, &wide_, 1),

      ON_DEAD(lumoDeviceCountProcessMemoryUsages, &device_, &number_),
      ON_DEAD(lumoDeviceGetProcessMemoryUsages, &device_, &usage_, 1),
      ON_DEAD(lumoDeviceCountProcessGpuUtilizations, &device_, &number_),
      ON_DEAD(lumoDeviceGetProcessGpuUtilizations, &device_, &share_, 1),

      ON_DEAD(lumoDeviceGetMpcMode, &device_, &number_),
      ON_DEAD(lumoDeviceSetMpcMode, &device_, 1),
      ON_DEAD(lumoDeviceSetMpcConfiguration, &device_, 1),
      ON_DEAD(lumoDeviceCountSupportedMpcProfiles, &device_, &number_),
      ON_DEAD(lumoDeviceGetSupportedMpcProfiles, &device_, &profile_, 1),
      ON_DEAD(lumoDeviceCountSupportedMpcConfigurations, &device_, &number_),
      ON_DEAD(lumoDeviceGetSupportedMpcConfigurations, &device_, &configuration_, 1),
      ON_DEAD(lumoDeviceGetMpcConfiguration, &device_, 1, &configuration_),
      ON_DEAD(lumoDeviceGetMpcConfigurationByName, &device_, "2x2", &configuration_),
      ON_DEAD(lumoDeviceCountMpcInstances, &device_, &number_),
      ON_DEAD(lumoDeviceGetMpcInstances, &device_, devices_, 4),
      ON_DEAD(lumoDeviceCountMpcInstanceByProfile, &device_, 1, &number_),
      ON_DEAD(lumoDeviceGetMpcInstanceByProfile, &device_, 1, devices_, 4),
      ON_DEAD(lumoDeviceGetMpcParentDevice, &device_, devices_),
      ON_DEAD(lumoDeviceGetMpcInstanceIndex, &device_, &number_),
      ON_DEAD(lumoDeviceGetMpcProfileInfo, &device_, &profile_),

      ON_DEAD(lumoDeviceGetSablinkSpec, &device_, &spec_),
      ON_DEAD(lumoDeviceGetSablinkState, &device_, 0, &number_),
      ON_DEAD(lumoDeviceGetSablinkCapStatus, &device_, 0, 0, &number_),
      ON_DEAD(lumoDeviceGetSablinkErrorCounter, &device_, 0, 0, &wide_),
      ON_DEAD(lumoDeviceResetSablinkErrorCounter, &device_, 0),
      ON_DEAD(lumoDeviceGetSablinkRemoteDevice, &device_, 0, devices_),
      ON_DEAD(lumoDeviceGetSablinkRemoteLink, &device_, 0, &number_),
      ON_DEAD(lumoDeviceCountSablinkLayouts, &device_, &other_, &number_),
      ON_DEAD(lumoDeviceGetSablinkLayouts, &device_, &other_, &layout_, 1),
      ON_DEAD(lumoDeviceCountSablinkShortestPaths, &device_, &other_, &number_),
      ON_DEAD(lumoDeviceGetSablinkShortestPaths, &device_, &other_, &path_, 1),
      ON_DEAD(lumoDeviceStartSablinkPerf, &device_, 0, &number_, &second_),
      ON_DEAD(lumoDeviceGetSablinkPerfData, &device_, 0, 1, &perf_),
      ON_DEAD(lumoDeviceStopSablinkPerf, &device_, 0, 1, &number_),
      ON_DEAD(lumoDeviceGetSablinkSerdesStatus, &device_, 0, &serdes_),

      ON_DEAD(lumoDeviceCountSupportedVirtTypes, &device_, &number_),
      ON_DEAD(lumoDeviceGetSupportedVirtTypes, &device_, &type_, 1),
      ON_DEAD(lumoDeviceCountAvailableVirtTypes, &device_, &number_),
      ON_DEAD(lumoDeviceGetAvailableVirtTypes, &device_, &type_, 1),
      ON_DEAD(lumoDeviceCountMaxVirtDevices, &device_, "11", &number_),
      ON_DEAD(lumoDeviceCountAvailableVirtDevices, &device_, "11", &number_),
      ON_DEAD(lumoDeviceCountActiveVirtDevices, &device_, &number_),
      ON_DEAD(lumoDeviceGetActiveVirtDeviceUuids, &device_, text_, 48, 4),
      ON_DEAD(lumoDeviceInitVirtDevice, &device_, "uuid", devices_),
      ON_DEAD(lumoDeviceGetVirtType, &device_, &type_),
      ON_DEAD(lumoDeviceGetVgpuId, &device_, &number_),
      ON_DEAD(lumoDeviceGetVmPid, &device_, &number_),
      ON_DEAD(lumoDeviceGetVgpuOverCommitInfo, &device_, &overCommit_),

      ON_DEAD(lumoGpuGetUtilization, &gpu_, &number_),
      ON_DEAD(lumoGpuGetGuestUtilization, &gpu_, &number_),
      ON_DEAD(lumoGpuGetEngineUtilization, &gpu_, 3, &number_),
      ON_DEAD(lumoGpuGetCoreUtilization, &gpu_, 1, &number_),
      ON_DEAD(lumoGpuGetMemoryControllerUtilization, &gpu_, &number_),
      ON_DEAD(lumoGpuGetTemperature, &gpu_, &level_),
      ON_DEAD(lumoGpuGetSensorTemperature, &gpu_, 0, &level_),
      ON_DEAD(lumoGpuGetMaxTemperature, &gpu_, &level_),
      ON_DEAD(lumoGpuGetClock, &gpu_, &number_),
      ON_DEAD(lumoGpuGetMaxClock, &gpu_, &number_),
      ON_DEAD(lumoGpuCountCoreMpx, &gpu_, 1, &number_),
      ON_DEAD(lumoGpuGetThermalSlowdownStatistics, &gpu_, &number_, &second_),
      ON_DEAD(lumoGpuReset, &gpu_),
      ON_DEAD(lumoGpuResetHwErrorCounts, &gpu_),

      ON_DEAD(lumoMemoryGetTotal, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetUsed, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetUtilization, &memory_, &number_),
      ON_DEAD(lumoMemoryGetSystemTotal, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetGuestReserved, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetGuestTotal, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetGuestUsed, &memory_, &wide_),
      ON_DEAD(lumoMemoryGetGuestUtilization, &memory_, &number_),
      ON_DEAD(lumoMemoryGetClock, &memory_, &number_),
      ON_DEAD(lumoMemoryGetMaxClock, &memory_, &number_),
      ON_DEAD(lumoMemoryGetBusWidth, &memory_, &number_),
      ON_DEAD(lumoMemoryGetBandwidth, &memory_, &number_),
      ON_DEAD(lumoMemoryGetSpeed, &memory_, &number_),
      ON_DEAD(lumoMemoryGetVendor, &memory_, text_, size),
      ON_DEAD(lumoMemoryGetType, &memory_, &number_),
      ON_DEAD(lumoMemoryGetEdcCounters, &memory_, &edc_),
      ON_DEAD(lumoMemoryGetEccMode, &memory_, &number_, &second_),
      ON_DEAD(lumoMemorySetEccMode, &memory_, 1),
      ON_DEAD(lumoMemoryGetRetiredPagesCount, &memory_, &number_, &second_),
      ON_DEAD(lumoMemoryGetRetiredPages, &memory_, 0, 1, &page_),
      ON_DEAD(lumoMemoryGetRetiredPagesPendingStatus, &memory_, &number_),
      ON_DEAD(lumoMemoryGetEccErrorCounter, &memory_, 0, 1, 0, &wide_),
      ON_DEAD(lumoMemoryClearEccErrorCounter, &memory_, 0),

      ON_DEAD(lumoVpuGetUtilization, &vpu_, &vpuUtilization_),
      ON_DEAD(lumoVpuGetClock, &vpu_, &number_),
      ON_DEAD(lumoVpuGetMaxClock, &vpu_, &number_),
      ON_DEAD(lumoVpuGetCodecCapacity, &vpu_, &number_, &second_),
      ON_DEAD(lumoVpuGetEncoderSessionStates, &vpu_, &number_, 1),
      ON_DEAD(lumoVpuGetDecoderSessionStates, &vpu_, &number_, 1),
      ON_DEAD(lumoVpuGetEncoderSessionMetrics, &vpu_, 0, &metrics_),
      ON_DEAD(lumoVpuGetDecoderSessionMetrics, &vpu_, 0, &metrics_),

      ON_DEAD(lumoDeviceGetSupportedEventTypes, &device_, &wide_),
      ON_DEAD(lumoDeviceGetEventDataByEventType, &device_, 1, &event_, 1, &number_),
      ON_DEAD(lumoDeviceIsPfmSupported, &device_, &number_),
      ON_DEAD(lumoDeviceStartPfm, &device_, 0),
      ON_DEAD(lumoDeviceStopPfm, &device_),
      ON_DEAD(lumoPfmSampleGet, &device_, &sample_),
      ON_DEAD(lumoLibraryCountDevice, &noLibrary_, &number_),
      ON_DEAD(lumoLibraryGetVersion, &noLibrary_, text_, 256),
      ON_DEAD(lumoLibraryInitSystem, &noLibrary_, &systemOut_),
      ON_DEAD(lumoLibraryInitDeviceByIndex, &noLibrary_, 0, devices_),
      ON_DEAD(lumoLibraryInitDeviceByUuid, &noLibrary_, "uuid", devices_),
      ON_DEAD(lumoLibraryInitDeviceByPciSbdf, &noLibrary_, "0000:41:00.0", devices_),
      ON_DEAD(lumoLibrarySetMpcConfigurationInBatch, &noLibrary_, 1, devices_, &number_),

      WITHOUT_HANDLE(lumoLibraryFreeSystem, &system_),
      WITHOUT_HANDLE(lumoLibraryFreeDevice, &device_),
      WITHOUT_HANDLE(lumoDeviceFreeGpu, &gpu_),
      WITHOUT_HANDLE(lumoDeviceFreeMemory, &memory_),
      WITHOUT_HANDLE(lumoDeviceFreeVpu, &vpu_),
      WITHOUT_HANDLE(lumoDeviceFreeVirtDevice, &device_),
      WITHOUT_HANDLE(lumoGetTargetUuidEventDataByEventType, "uuid", 1, &event_, 1, &number_),
      WITHOUT_HANDLE(lumoEventCreate, &eventOut_),
      WITHOUT_HANDLE(lumoEventDestroy, &foreignEvent_),
      WITHOUT_HANDLE(lumoEventRegister, &foreignEvent_, &device_, LUMO_EVENT_XID),
      WITHOUT_HANDLE(lumoEventWait, &foreignEvent_, 0, &event_),
      WITHOUT_HANDLE(lumoPfmSampleAlloc, &sampleOut_),
      WITHOUT_HANDLE(lumoPfmSampleFree, &sample_),
      WITHOUT_HANDLE(lumoPfmMetricsGet, nullptr),
      WITHOUT_HANDLE(lumoLibraryInit, &library_),
      WITHOUT_HANDLE(lumoLibraryShutDown, library_),
      WITHOUT_HANDLE(lumoLibrarySetLogConfiguration, &log_configuration_),
      WITHOUT_HANDLE(lumoLibraryGetLogConfiguration, &log_configuration_),
      WITHOUT_HANDLE(lumoLogSetConfiguration, &log_configuration_),
      WITHOUT_HANDLE(lumoLogGetConfiguration, &log_configuration_),
  };
}

TEST_F(ArgumentsTest, EveryFunctionOfTheHeaderIsHere) {
  std::ifstream file(LUMO_HEADER);
  std::stringstream header;
  header << file.rdbuf();
  const std::string text = header.str();
  const std::regex declaration("LumoReturn (lumo[A-Z][A-Za-z0-9]*)\\(");
  std::set<std::string> declared;
  for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match) {
    declared.insert((*match)[1]);
  }
  EXPECT_GT(declared.size(), 150U);
  std::set<std::string> here;
  for (const Row& row : rows()) {
    EXPECT_TRUE(here.insert(row.name).second) << row.name;
  }
  EXPECT_EQ(here, declared);
}

TEST_F(ArgumentsTest, ANullInAnyPlaceIsRefused) {
  for (const Row& row : rows()) {
    EXPECT_FALSE(row.nulls.empty()) << row.name;
    for (std::size_t i = 0; i < row.nulls.size(); ++i) {
      EXPECT_EQ(row.nulls[i](), LUMO_RETURN_INVALID_ARGUMENT) << row.name << ", pointer " << i;
    }
  }
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(wide_, 99U);
  EXPECT_EQ(devices_[0], &device_);
  EXPECT_TRUE(platform_.asked.empty());
}

TEST_F(ArgumentsTest, AHandleWhoseObjectIsGoneAnswers999) {
  mustStart();
  for (const Row& row : rows()) {
    // A sample must be the library's before the device is looked at.
    if (row.hasHandle && std::string(row.name) != "lumoPfmSampleGet") {
      EXPECT_EQ(row.call(), LUMO_RETURN_UNKNOWN_ERROR) << row.name;
    }
  }
  ASSERT_EQ(lumoPfmSampleAlloc(&sampleOut_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoPfmSampleGet(&device_, sampleOut_), LUMO_RETURN_UNKNOWN_ERROR);
  ASSERT_EQ(lumoEventCreate(&eventOut_), LUMO_RETURN_SUCCESS);
  EXPECT_EQ(lumoEventRegister(eventOut_, &device_, LUMO_EVENT_XID), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_STREQ(text_, "before");
  EXPECT_EQ(number_, 99U);
  EXPECT_EQ(wide_, 99U);
}

TEST_F(ArgumentsTest, ASecondDeviceThatIsGoneAnswers999) {
  auto desc = describe("uuid-0", addressOf(0x40));
  desc.kmdFlagB = true;
  addGpu(0);
  platform_.descOf[0] = desc;
  mustStart();
  LumoDevice* const live = device(0);
  EXPECT_EQ(lumoDeviceGetTopologyLevel(live, &other_, &level_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoDeviceGetP2PStatus(live, &other_, 0, &number_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoDeviceCountSablinkLayouts(live, &other_, &number_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(lumoDeviceCountSablinkShortestPaths(live, &other_, &number_), LUMO_RETURN_UNKNOWN_ERROR);
  EXPECT_EQ(number_, 99U);
}

TEST_F(ArgumentsTest, ANumberOutOfItsRangeIsRefusedBeforeTheHandleIsLookedAt) {
  constexpr unsigned kMost = ~0U;
  const std::pair<const char*, LumoReturn> codes[] = {
      {"engine", lumoGpuGetEngineUtilization(&gpu_, 4, &number_)},
      {"engine, largest", lumoGpuGetEngineUtilization(&gpu_, kMost, &number_)},
      {"kind of core utilization", lumoGpuGetCoreUtilization(&gpu_, 2, &number_)},
      {"ECC mode", lumoMemorySetEccMode(&memory_, 2)},
      {"cause", lumoMemoryGetRetiredPages(&memory_, 2, 1, &page_)},
      {"no room for a page", lumoMemoryGetRetiredPages(&memory_, 0, 0, &page_)},
      {"error type", lumoMemoryGetEccErrorCounter(&memory_, 2, 1, 0, &wide_)},
      {"counter type 0", lumoMemoryGetEccErrorCounter(&memory_, 0, 0, 0, &wide_)},
      {"counter type 2", lumoMemoryGetEccErrorCounter(&memory_, 0, 2, 0, &wide_)},
      {"location", lumoMemoryGetEccErrorCounter(&memory_, 0, 1, 2, &wide_)},
      {"location to clear", lumoMemoryClearEccErrorCounter(&memory_, 2)},
      {"performance state", lumoDeviceSetPerformanceState(&device_, 16)},
      {"persistent", lumoDeviceSetPowerLimitWithPersistentOption(&device_, 250000, 2)},
      {"level", lumoDeviceCountDeviceByTopologyLevel(&device_, 6, &number_)},
      {"level of a list", lumoDeviceGetDeviceByTopologyLevel(&device_, 6, 4, devices_)},
      {"P2P capability", lumoDeviceGetP2PStatus(&device_, &other_, 2, &number_)},
      {"MPC mode", lumoDeviceSetMpcMode(&device_, 2)},
      {"link capability", lumoDeviceGetSablinkCapStatus(&device_, 0, 2, &number_)},
      {"kind of link error", lumoDeviceGetSablinkErrorCounter(&device_, 0, 6, &wide_)},
      {"sampling mode", lumoDeviceStartPfm(&device_, 2)},
      {"no word of a mask", lumoDeviceGetCpuAffinityWithinNode(&device_, &wide_, 0)},
      {"address", lumoDeviceGetPciDeviceTopology(&device_, "41:00.0", "0000:42:00.0", &level_)},
      {"other address", lumoDeviceGetPciDeviceTopology(&device_, "0000:42:00.0", "", &level_)},
  };
  for (const auto& [what, code] : codes) {
    EXPECT_EQ(code, LUMO_RETURN_INVALID_ARGUMENT) << what;
  }
}

}  // namespace
