#include "calls/operations.h"

#include <cstdio>
#include <cstdlib>

#include "calls/ask.h"

namespace tolk_test {
namespace {

// Each names the function, and its arguments between the handle and the outputs; `on` is the Subject.
#define VALUE(function, ...)                                                                    \
  Operation {                                                                                   \
#function, [](const Subject& on) { return ask(on, function __VA_OPT__(, ) __VA_ARGS__); },    \
        [](const Subject& on) { return askNulls(on, function __VA_OPT__(, ) __VA_ARGS__); } \
  }
#define TEXT(function)                                                                                      \
  Operation {                                                                                               \
#function, [](const Subject&                                                                            \
                      on) { return askText(on, function); },                                                \
                                                          [](const Subject&                                 \
                                                                 on) { return askTextNulls(on, function); } \
  }
// A mask in one word.
#define MASK(function)                                                                                  \
  {                                                                                                     \
#function,                                                                                            \
        [](const Subject& on) {                                                                           \
          return ask(                                                                                     \
              on, +[](LumoDevice* device, unsigned long long* mask) { return function(device, mask, 1); }); \
        },                                                                                                \
        [](const Subject& on) {                                                                           \
          unsigned long long mask = 0;                                                                    \
          return Codes{function(nullptr, &mask, 1), function(on, nullptr, 1)};                            \
        } \
  }
#define LIST(count, get, ...)                                                                      \
  Operation {                                                                                      \
#get, [](const Subject& on) { return askList(on, count, get __VA_OPT__(, ) __VA_ARGS__); },      \
        [](const Subject& on) { return askListNulls(on, count, get __VA_OPT__(, ) __VA_ARGS__); } \
  }

using Codes = std::vector<LumoReturn>;

// A device that refuses the start has to refuse the rest in the same way, so the number is of no matter then.
unsigned startPcie(const Subject& on) {
  unsigned session = 1;
  lumoDeviceStartPciePerf(on, 100, &session);
  return session;
}

unsigned startSablink(const Subject& on) {
  unsigned session = 1;
  unsigned intervalMs = 0;
  lumoDeviceStartSablinkPerf(on, 0, &session, &intervalMs);
  return session;
}

constexpr Operation kReadings[] = {
    VALUE(lumoDeviceInitGpu),
    VALUE(lumoDeviceInitMemory),
    VALUE(lumoDeviceInitVpu),
    VALUE(lumoDeviceGetIndex),
    VALUE(lumoDeviceGetType),
    VALUE(lumoDeviceGetIntId),
    TEXT(lumoDeviceGetUUID),
    TEXT(lumoDeviceGetName),
    VALUE(lumoDeviceGetBrand),
    TEXT(lumoDeviceGetSerialNumber),
    TEXT(lumoDeviceGetOvBiosVersion),
    TEXT(lumoDeviceGetRtosVersion),
    VALUE(lumoDeviceGetProperty),
    VALUE(lumoDeviceGetComputeCapability),
    VALUE(lumoDeviceGetCoreCount),
    VALUE(lumoDeviceGetUsableCores),
    LIST(lumoDeviceCountCoreUnits, lumoDeviceGetCoreUnits),
    TEXT(lumoDeviceGetMiscPath),
    TEXT(lumoDeviceGetCardPath),
    TEXT(lumoDeviceGetRenderPath),
    TEXT(lumoDeviceGetIonPath),

    VALUE(lumoDeviceGetPciInfo),
    VALUE(lumoDeviceGetPcieSlotInfo),
    VALUE(lumoDeviceGetPcieReplayCounter),
    VALUE(lumoDeviceGetPcieBar2MemoryInfo),
    VALUE(lumoDeviceCountFan),
    VALUE(lumoDeviceGetFanSpeed, 0U),
    VALUE(lumoDeviceGetFanRpm, 0U),
    VALUE(lumoDeviceGetPowerUsage),
    VALUE(lumoDeviceGetDefaultPowerLimit),
    VALUE(lumoDeviceGetEnforcedPowerLimit),
    VALUE(lumoDeviceGetPowerLimit),
    VALUE(lumoDeviceGetPowerLimitConstraints),
    VALUE(lumoDeviceGetPerformanceState),
    VALUE(lumoDeviceCountDisplayInterface),
    VALUE(lumoDeviceGetDisplayInterfaceSpec, 0U),

    VALUE(lumoDeviceGetTopologyLevel, on.other),
    VALUE(lumoDeviceGetPciDeviceTopology, "0000:01:00.0", "0000:11:00.0"),
    {"lumoDeviceGetDeviceByTopologyLevel",
     [](const Subject& on) {
       return askDevicesAtLevel(on, LUMO_TOPOLOGY_NODE) + "|" + askDevicesAtLevel(on, LUMO_TOPOLOGY_SYSTEM);
     },
     [](const Subject& on) {
       unsigned count = 0;
       LumoDevice* found = nullptr;
       return Codes{lumoDeviceCountDeviceByTopologyLevel(nullptr, 0, &count),
                    lumoDeviceCountDeviceByTopologyLevel(on, 0, nullptr),
                    lumoDeviceGetDeviceByTopologyLevel(nullptr, 0, 1, &found),
                    lumoDeviceGetDeviceByTopologyLevel(on, 0, 1, nullptr)};
     }},
    {"lumoDeviceGetPciNicDeviceSbdf",
     [](const Subject& on) {
       return askTexts([&](unsigned* count) { return lumoDeviceCountPciNicDevices(on, count); },
                       [&](char* texts, unsigned width, unsigned count) {
                         return lumoDeviceGetPciNicDeviceSbdf(on, texts, width, count);
                       },
                       LUMO_RETURN_NOT_FOUND);
     },
     [](const Subject& on) {
       unsigned count = 0;
       char text[32];
       return Codes{lumoDeviceCountPciNicDevices(nullptr, &count), lumoDeviceCountPciNicDevices(on, nullptr),
                    lumoDeviceGetPciNicDeviceSbdf(nullptr, text, sizeof text, 1),
                    lumoDeviceGetPciNicDeviceSbdf(on, nullptr, sizeof text, 1)};
     }},
    VALUE(lumoDeviceGetP2PStatus, on.other, 0U),
    TEXT(lumoDeviceGetCpuAffinityStringWithinNode),
    TEXT(lumoDeviceGetMemoryAffinityStringWithinNode),
    MASK(lumoDeviceGetCpuAffinityWithinNode),
    MASK(lumoDeviceGetMemoryAffinityWithinNode),
    MASK(lumoDeviceGetCpuAffinityBitmaskWithinNode),

    LIST(lumoDeviceCountProcessMemoryUsages, lumoDeviceGetProcessMemoryUsages),
    LIST(lumoDeviceCountProcessGpuUtilizations, lumoDeviceGetProcessGpuUtilizations),

    VALUE(lumoDeviceGetMpcMode),
    LIST(lumoDeviceCountSupportedMpcProfiles, lumoDeviceGetSupportedMpcProfiles),
    LIST(lumoDeviceCountSupportedMpcConfigurations, lumoDeviceGetSupportedMpcConfigurations),
    VALUE(lumoDeviceGetMpcConfiguration, 1U),
    VALUE(lumoDeviceGetMpcConfigurationByName, "pair"),
    LIST(lumoDeviceCountMpcInstances, lumoDeviceGetMpcInstances),
    LIST(lumoDeviceCountMpcInstanceByProfile, lumoDeviceGetMpcInstanceByProfile, 3U),
    VALUE(lumoDeviceGetMpcParentDevice),
    VALUE(lumoDeviceGetMpcInstanceIndex),
    VALUE(lumoDeviceGetMpcProfileInfo),

    VALUE(lumoDeviceGetSablinkSpec),
    VALUE(lumoDeviceGetSablinkState, 0U),
    VALUE(lumoDeviceGetSablinkCapStatus, 0U, 0U),
    VALUE(lumoDeviceGetSablinkErrorCounter, 0U, 5U),
    VALUE(lumoDeviceGetSablinkRemoteDevice, 0U),
    VALUE(lumoDeviceGetSablinkRemoteLink, 0U),
    LIST(lumoDeviceCountSablinkLayouts, lumoDeviceGetSablinkLayouts, on.other),
    LIST(lumoDeviceCountSablinkShortestPaths, lumoDeviceGetSablinkShortestPaths, on.other),
    VALUE(lumoDeviceGetSablinkSerdesStatus, 0U),

    LIST(lumoDeviceCountSupportedVirtTypes, lumoDeviceGetSupportedVirtTypes),
    LIST(lumoDeviceCountAvailableVirtTypes, lumoDeviceGetAvailableVirtTypes),
    VALUE(lumoDeviceCountMaxVirtDevices, "11"),
    VALUE(lumoDeviceCountAvailableVirtDevices, "11"),
    {"lumoDeviceGetActiveVirtDeviceUuids",
     [](const Subject& on) {
       return askTexts([&](unsigned* count) { return lumoDeviceCountActiveVirtDevices(on, count); },
                       [&](char* texts, unsigned width, unsigned count) {
                         return lumoDeviceGetActiveVirtDeviceUuids(on, texts, width, count);
                       },
                       LUMO_RETURN_INSUFFICIENT_SIZE);
     },
     [](const Subject& on) {
       unsigned count = 0;
       char text[64];
       return Codes{lumoDeviceCountActiveVirtDevices(nullptr, &count),
                    lumoDeviceCountActiveVirtDevices(on, nullptr),
                    lumoDeviceGetActiveVirtDeviceUuids(nullptr, text, sizeof text, 1),
                    lumoDeviceGetActiveVirtDeviceUuids(on, nullptr, sizeof text, 1)};
     }},
    VALUE(lumoDeviceInitVirtDevice, "c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71"),
    VALUE(lumoDeviceGetVirtType),
    VALUE(lumoDeviceGetVgpuId),
    VALUE(lumoDeviceGetVmPid),
    VALUE(lumoDeviceGetVgpuOverCommitInfo),

    VALUE(lumoGpuGetUtilization),
    VALUE(lumoGpuGetGuestUtilization),
    VALUE(lumoGpuGetEngineUtilization, 0U),
    VALUE(lumoGpuGetCoreUtilization, 0U),
    VALUE(lumoGpuGetMemoryControllerUtilization),
    VALUE(lumoGpuGetTemperature),
    VALUE(lumoGpuGetSensorTemperature, 0U),
    VALUE(lumoGpuGetMaxTemperature),
    VALUE(lumoGpuGetClock),
    VALUE(lumoGpuGetMaxClock),
    VALUE(lumoGpuCountCoreMpx, 1ULL),
    VALUE(lumoGpuGetThermalSlowdownStatistics),

    VALUE(lumoMemoryGetTotal),
    VALUE(lumoMemoryGetUsed),
    VALUE(lumoMemoryGetUtilization),
    VALUE(lumoMemoryGetSystemTotal),
    VALUE(lumoMemoryGetGuestReserved),
    VALUE(lumoMemoryGetGuestTotal),
    VALUE(lumoMemoryGetGuestUsed),
    VALUE(lumoMemoryGetGuestUtilization),
    VALUE(lumoMemoryGetClock),
    VALUE(lumoMemoryGetMaxClock),
    VALUE(lumoMemoryGetBusWidth),
    VALUE(lumoMemoryGetBandwidth),
    VALUE(lumoMemoryGetSpeed),
    TEXT(lumoMemoryGetVendor),
    VALUE(lumoMemoryGetType),
    VALUE(lumoMemoryGetEdcCounters),
    VALUE(lumoMemoryGetEccMode),
    VALUE(lumoMemoryGetRetiredPagesCount),
    {"lumoMemoryGetRetiredPages", [](const Subject& on) { return askPages(on, 0) + "|" + askPages(on, 1); },
     [](const Subject& on) {
       LumoRetiredPage page;
       return Codes{lumoMemoryGetRetiredPages(nullptr, 0, 1, &page),
                    lumoMemoryGetRetiredPages(on, 0, 1, nullptr)};
     }},
    VALUE(lumoMemoryGetRetiredPagesPendingStatus),
    VALUE(lumoMemoryGetEccErrorCounter, 0U, 1U, 0U),

    VALUE(lumoVpuGetUtilization),
    VALUE(lumoVpuGetClock),
    VALUE(lumoVpuGetMaxClock),
    VALUE(lumoVpuGetCodecCapacity),
    {"lumoVpuGetEncoderSessionStates",
     [](const Subject& on) { return askStates(on, lumoVpuGetEncoderSessionStates); },
     [](const Subject& on) {
       unsigned state = 0;
       return Codes{lumoVpuGetEncoderSessionStates(nullptr, &state, 1),
                    lumoVpuGetEncoderSessionStates(on, nullptr, 1)};
     }},
    {"lumoVpuGetDecoderSessionStates",
     [](const Subject& on) { return askStates(on, lumoVpuGetDecoderSessionStates); },
     [](const Subject& on) {
       unsigned state = 0;
       return Codes{lumoVpuGetDecoderSessionStates(nullptr, &state, 1),
                    lumoVpuGetDecoderSessionStates(on, nullptr, 1)};
     }},
    VALUE(lumoVpuGetEncoderSessionMetrics, 0U),
    VALUE(lumoVpuGetDecoderSessionMetrics, 0U),

    VALUE(lumoDeviceGetSupportedEventTypes),
    {"lumoDeviceGetEventDataByEventType",
     [](const Subject& on) {
       return askEvents([&](LumoEventData* events, unsigned capacity, unsigned* count) {
         return lumoDeviceGetEventDataByEventType(on, LUMO_EVENT_XID, events, capacity, count);
       });
     },
     [](const Subject& on) {
       LumoEventData event;
       unsigned count = 0;
       return Codes{lumoDeviceGetEventDataByEventType(nullptr, LUMO_EVENT_XID, &event, 1, &count),
                    lumoDeviceGetEventDataByEventType(on, LUMO_EVENT_XID, nullptr, 1, &count),
                    lumoDeviceGetEventDataByEventType(on, LUMO_EVENT_XID, &event, 1, nullptr)};
     }},
    VALUE(lumoDeviceIsPfmSupported),
};

constexpr Operation kChanges[] = {
    VALUE(lumoDeviceStartPciePerf, 100U),
    VALUE(lumoDeviceGetPcieBandWidth, startPcie(on)),
    VALUE(lumoDeviceStopPciePerf, startPcie(on)),
    VALUE(lumoDeviceStartSablinkPerf, 0U),
    VALUE(lumoDeviceGetSablinkPerfData, 0U, startSablink(on)),
    VALUE(lumoDeviceStopSablinkPerf, 0U, startSablink(on)),
    VALUE(lumoDeviceSetPowerLimitWithPersistentOption, 250000U, 0U),
    VALUE(lumoDeviceSetPerformanceState, 3U),
    VALUE(lumoDeviceResetEventMessages),
    VALUE(lumoDeviceResetSablinkErrorCounter, 0U),
    VALUE(lumoMemoryClearEccErrorCounter, 0U),
    VALUE(lumoMemorySetEccMode, 1U),
    VALUE(lumoGpuResetHwErrorCounts),
    VALUE(lumoGpuReset),
    VALUE(lumoDeviceReset),
    VALUE(lumoDeviceStartPfm, 0U),
    VALUE(lumoDeviceStopPfm),
    VALUE(lumoDeviceSetMpcConfiguration, 0U),
    VALUE(lumoDeviceSetMpcMode, 0U),
};

}  // namespace

std::span<const Operation> readings() {
  return kReadings;
}

std::span<const Operation> changes() {
  return kChanges;
}

const Operation& operation(std::string_view name) {
  for (const auto table : {readings(), changes()}) {
    for (const Operation& row : table) {
      if (row.name == name) {
        return row;
      }
    }
  }
  std::fprintf(stderr, "no operation %.*s\n", static_cast<int>(name.size()), name.data());
  std::abort();
}

}  // namespace tolk_test
