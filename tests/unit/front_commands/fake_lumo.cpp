#include "fake_lumo.h"

#include <concepts>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <type_traits>

namespace tolk_test {

FakeLumo& fakeLumo() {
  static FakeLumo fake;
  return fake;
}

FakeLumo::FakeLumo() {
  set("lumoLibraryCountDevice", 1u);
  set("lumoDeviceGetName", std::string("OVT B240"));
  set("lumoDeviceGetUUID", std::string("00000000-0000-0000-0000-000000000001"));
  set("lumoSystemGetDriverVersion", std::string("3.1.0"));
}

namespace {

template <class Type>
constexpr const char* kHandleKind = nullptr;
template <>
constexpr const char* kHandleKind<LumoLibrary> = "library";
template <>
constexpr const char* kHandleKind<LumoSystem> = "system";
template <>
constexpr const char* kHandleKind<LumoDevice> = "device";
template <>
constexpr const char* kHandleKind<LumoGpu> = "gpu";
template <>
constexpr const char* kHandleKind<LumoMemory> = "memory";
template <>
constexpr const char* kHandleKind<LumoVpu> = "vpu";

template <class Type>
concept IsHandle = kHandleKind<Type>
!= nullptr;

template <IsHandle Handle>
void describe(std::vector<std::string>& inputs, Handle* handle) {
  const auto number = reinterpret_cast<const char*>(handle) - handleCells<Handle>;
  inputs.push_back(handle == nullptr ? "null" : kHandleKind<Handle> + (" " + std::to_string(number)));
}
void describe(std::vector<std::string>& inputs, std::unsigned_integral auto number) {
  inputs.push_back(std::to_string(number));
}
void describe(std::vector<std::string>& inputs, const char* text) {
  inputs.push_back('"' + std::string(text) + '"');
}
template <class Output>
void describe(std::vector<std::string>&, Output*) {}

/// What a call writes, output by output.
struct Outputs {
  const std::vector<std::any>* answers;
  std::size_t next = 0;
  unsigned capacity = 0;  ///< of a list or text: the last of the call's 32-bit inputs

  const std::any* take() {
    return answers != nullptr && next < answers->size() ? &(*answers)[next++] : nullptr;
  }
};

template <IsHandle Handle>
void fill(Outputs&, Handle*) {}
void fill(Outputs&, std::unsigned_integral auto) {}
void fill(Outputs&, const char*) {}
void fill(Outputs& outputs, char* text) {
  const auto* const answer = outputs.take();
  std::snprintf(text, outputs.capacity, "%s",
                answer == nullptr ? "" : std::any_cast<const std::string&>(*answer).c_str());
}
template <class Output>
void fill(Outputs& outputs, Output* output) {
  const auto* const answer = outputs.take();
  if (answer == nullptr) {
    if constexpr (std::is_pointer_v<Output>) {
      *output = handleOf<std::remove_pointer_t<Output>>();
    } else {
      *output = Output{};
    }
  } else if (const auto* const list = std::any_cast<std::vector<Output>>(answer)) {
    std::copy_n(list->begin(), std::min<std::size_t>(list->size(), outputs.capacity), output);
  } else {
    *output = std::any_cast<Output>(*answer);
  }
}

template <class Type>
unsigned lastCapacity(unsigned capacity, Type argument) {
  if constexpr (std::is_same_v<Type, unsigned>) return argument;
  return capacity;
}

/// Notes a call; its text. The commands call from several threads.
template <class... Arguments>
std::string note(const char* name, Arguments... arguments) {
  std::vector<std::string> inputs;
  (describe(inputs, arguments), ...);
  std::string text = name + std::string("(");
  for (const auto& input : inputs) text += (text.back() == '(' ? "" : ", ") + input;
  text += ')';
  fakeLumo().calls.emplace_back(name);
  fakeLumo().lines.push_back(text);
  return text;
}

LumoReturn status(const std::string& text, const char* name) {
  auto& failures = fakeLumo().failures;
  auto found = failures.find(text);
  if (found == failures.end()) found = failures.find(name);
  if (found == failures.end() || found->second.empty()) return LUMO_RETURN_SUCCESS;
  const LumoReturn ret = found->second.front();
  found->second.pop_front();
  return ret;
}

const std::vector<std::any>* nextStep(const std::string& call) {
  const auto found = fakeLumo().steps.find(call);
  if (found == fakeLumo().steps.end()) return nullptr;
  auto& [list, next] = found->second;
  return &list[std::min(next++, list.size() - 1)];
}

const std::vector<std::any>* answersTo(const std::string& text, const char* name) {
  if (const auto* const step = nextStep(text)) return step;
  if (const auto* const step = nextStep(name)) return step;
  const auto& answers = fakeLumo().answers;
  auto found = answers.find(text);
  if (found == answers.end()) found = answers.find(name);
  return found == answers.end() ? nullptr : &found->second;
}

std::mutex& callMutex() {
  static std::mutex mutex;
  return mutex;
}

template <class... Arguments>
LumoReturn answer(const char* name, Arguments... arguments) {
  const std::lock_guard lock(callMutex());
  const auto text = note(name, arguments...);
  [[maybe_unused]] Outputs outputs{answersTo(text, name)};
  ((outputs.capacity = lastCapacity(outputs.capacity, arguments)), ...);
  (fill(outputs, arguments), ...);
  return status(text, name);
}

/// Texts one behind the other, `width` bytes each.
LumoReturn answerTexts(const char* name, LumoDevice* handle, char* texts, unsigned width, unsigned count) {
  const std::lock_guard lock(callMutex());
  const auto call = note(name, handle, width, count);
  if (const auto* const answers = answersTo(call, name)) {
    const auto& list = std::any_cast<const std::vector<std::string>&>(answers->front());
    for (std::size_t i = 0; i < list.size() && i < count; ++i) {
      std::snprintf(texts + i * width, width, "%s", list[i].c_str());
    }
  }
  return status(call, name);
}

}  // namespace
}  // namespace tolk_test

using namespace tolk_test;

#define FAKE1(function, A)      \
  LumoReturn function(A a) {    \
    return answer(__func__, a); \
  }
#define FAKE2(function, A, B)      \
  LumoReturn function(A a, B b) {  \
    return answer(__func__, a, b); \
  }
#define FAKE3(function, A, B, C)       \
  LumoReturn function(A a, B b, C c) { \
    return answer(__func__, a, b, c);  \
  }
#define FAKE4(function, A, B, C, D)         \
  LumoReturn function(A a, B b, C c, D d) { \
    return answer(__func__, a, b, c, d);    \
  }
#define FAKE5(function, A, B, C, D, E)           \
  LumoReturn function(A a, B b, C c, D d, E e) { \
    return answer(__func__, a, b, c, d, e);      \
  }

using u64 = unsigned long long;

LumoReturn lumoLogGetConfiguration(LumoLogConfiguration* configuration) {
  *configuration = fakeLumo().log;
  return answer(__func__);
}
LumoReturn lumoLogSetConfiguration(const LumoLogConfiguration* configuration) {
  fakeLumo().log = *configuration;
  return answer(__func__);
}

FAKE1(lumoLibraryInit, LumoLibrary**)
FAKE1(lumoLibraryShutDown, LumoLibrary*)
FAKE2(lumoLibraryCountDevice, LumoLibrary*, unsigned*)
FAKE2(lumoLibraryInitSystem, LumoLibrary*, LumoSystem**)
FAKE1(lumoLibraryFreeSystem, LumoSystem*)
FAKE3(lumoLibraryInitDeviceByIndex, LumoLibrary*, unsigned, LumoDevice**)
FAKE3(lumoLibraryInitDeviceByUuid, LumoLibrary*, const char*, LumoDevice**)
FAKE3(lumoSystemGetDriverVersion, LumoSystem*, char*, unsigned)
FAKE4(lumoSystemGetProcessName, LumoSystem*, unsigned, char*, unsigned)

FAKE2(lumoDeviceInitGpu, LumoDevice*, LumoGpu**)
FAKE2(lumoDeviceInitMemory, LumoDevice*, LumoMemory**)
FAKE2(lumoDeviceInitVpu, LumoDevice*, LumoVpu**)
FAKE2(lumoDeviceGetIndex, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetUUID, LumoDevice*, char*, unsigned)
FAKE3(lumoDeviceGetName, LumoDevice*, char*, unsigned)
FAKE2(lumoDeviceGetBrand, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetSerialNumber, LumoDevice*, char*, unsigned)
FAKE3(lumoDeviceGetOvBiosVersion, LumoDevice*, char*, unsigned)
FAKE2(lumoDeviceGetProperty, LumoDevice*, u64*)
FAKE2(lumoDeviceGetPciInfo, LumoDevice*, LumoPciInfo*)
FAKE2(lumoDeviceGetPcieSlotInfo, LumoDevice*, LumoPciSlotInfo*)
FAKE2(lumoDeviceCountFan, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetFanSpeed, LumoDevice*, unsigned, unsigned*)
FAKE2(lumoDeviceGetPowerUsage, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetDefaultPowerLimit, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetEnforcedPowerLimit, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetPowerLimit, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetPowerLimitConstraints, LumoDevice*, unsigned*, unsigned*)
FAKE3(lumoDeviceSetPowerLimitWithPersistentOption, LumoDevice*, unsigned, unsigned)
FAKE2(lumoDeviceGetPerformanceState, LumoDevice*, unsigned*)
FAKE2(lumoDeviceCountDisplayInterface, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetDisplayInterfaceSpec, LumoDevice*, unsigned, LumoDispIntfSpec*)
FAKE1(lumoDeviceReset, LumoDevice*)

FAKE3(lumoDeviceGetTopologyLevel, LumoDevice*, LumoDevice*, int*)
FAKE4(lumoDeviceGetPciDeviceTopology, LumoDevice*, const char*, const char*, int*)
FAKE3(lumoDeviceCountDeviceByTopologyLevel, LumoDevice*, unsigned, unsigned*)
FAKE4(lumoDeviceGetDeviceByTopologyLevel, LumoDevice*, unsigned, unsigned, LumoDevice**)
FAKE2(lumoDeviceCountPciNicDevices, LumoDevice*, unsigned*)
LumoReturn lumoDeviceGetPciNicDeviceSbdf(LumoDevice* handle, char* sbdfs, unsigned width, unsigned count) {
  return answerTexts(__func__, handle, sbdfs, width, count);
}
FAKE4(lumoDeviceGetP2PStatus, LumoDevice*, LumoDevice*, unsigned, unsigned*)
FAKE3(lumoDeviceGetCpuAffinityStringWithinNode, LumoDevice*, char*, unsigned)
FAKE3(lumoDeviceGetMemoryAffinityStringWithinNode, LumoDevice*, char*, unsigned)

FAKE2(lumoDeviceCountProcessMemoryUsages, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetProcessMemoryUsages, LumoDevice*, LumoProcessMemUsage*, unsigned)
FAKE2(lumoDeviceCountProcessGpuUtilizations, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetProcessGpuUtilizations, LumoDevice*, LumoProcessGpuUtilization*, unsigned)

FAKE2(lumoDeviceSetMpcMode, LumoDevice*, unsigned)
FAKE2(lumoDeviceSetMpcConfiguration, LumoDevice*, unsigned)
FAKE2(lumoDeviceCountSupportedMpcProfiles, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetSupportedMpcProfiles, LumoDevice*, LumoMpcProfile*, unsigned)
FAKE2(lumoDeviceCountSupportedMpcConfigurations, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetSupportedMpcConfigurations, LumoDevice*, LumoMpcConfiguration*, unsigned)
FAKE2(lumoDeviceCountMpcInstances, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetMpcInstances, LumoDevice*, LumoDevice**, unsigned)
FAKE2(lumoDeviceGetMpcParentDevice, LumoDevice*, LumoDevice**)
FAKE2(lumoDeviceGetMpcInstanceIndex, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetMpcProfileInfo, LumoDevice*, LumoMpcProfile*)

FAKE2(lumoDeviceGetSablinkSpec, LumoDevice*, LumoSablinkSpec*)
FAKE3(lumoDeviceGetSablinkState, LumoDevice*, unsigned, unsigned*)
FAKE4(lumoDeviceGetSablinkCapStatus, LumoDevice*, unsigned, unsigned, unsigned*)
FAKE4(lumoDeviceGetSablinkErrorCounter, LumoDevice*, unsigned, unsigned, u64*)
FAKE2(lumoDeviceResetSablinkErrorCounter, LumoDevice*, unsigned)
FAKE3(lumoDeviceGetSablinkRemoteDevice, LumoDevice*, unsigned, LumoDevice**)
FAKE3(lumoDeviceCountSablinkLayouts, LumoDevice*, LumoDevice*, unsigned*)
FAKE4(lumoDeviceGetSablinkLayouts, LumoDevice*, LumoDevice*, LumoSablinkLayout*, unsigned)
FAKE3(lumoDeviceCountSablinkShortestPaths, LumoDevice*, LumoDevice*, unsigned*)
FAKE4(lumoDeviceGetSablinkShortestPaths, LumoDevice*, LumoDevice*, LumoSablinkPath*, unsigned)

FAKE2(lumoDeviceCountSupportedVirtTypes, LumoDevice*, unsigned*)
FAKE3(lumoDeviceGetSupportedVirtTypes, LumoDevice*, LumoVirtType*, unsigned)
FAKE3(lumoDeviceCountMaxVirtDevices, LumoDevice*, const char*, unsigned*)
FAKE2(lumoDeviceCountActiveVirtDevices, LumoDevice*, unsigned*)
LumoReturn lumoDeviceGetActiveVirtDeviceUuids(LumoDevice* handle, char* uuids, unsigned width,
                                              unsigned count) {
  return answerTexts(__func__, handle, uuids, width, count);
}
FAKE3(lumoDeviceInitVirtDevice, LumoDevice*, const char*, LumoDevice**)
FAKE2(lumoDeviceGetVirtType, LumoDevice*, LumoVirtType*)
FAKE2(lumoDeviceGetVgpuId, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetVmPid, LumoDevice*, unsigned*)
FAKE2(lumoDeviceGetVgpuOverCommitInfo, LumoDevice*, LumoVgpuOverCommitInfo*)

FAKE2(lumoGpuGetUtilization, LumoGpu*, unsigned*)
FAKE2(lumoGpuGetGuestUtilization, LumoGpu*, unsigned*)
FAKE2(lumoGpuGetTemperature, LumoGpu*, int*)
FAKE2(lumoGpuGetClock, LumoGpu*, unsigned*)
FAKE2(lumoGpuGetMaxClock, LumoGpu*, unsigned*)
FAKE3(lumoGpuGetThermalSlowdownStatistics, LumoGpu*, unsigned*, unsigned*)
FAKE1(lumoGpuReset, LumoGpu*)
FAKE1(lumoGpuResetHwErrorCounts, LumoGpu*)

FAKE2(lumoMemoryGetTotal, LumoMemory*, u64*)
FAKE2(lumoMemoryGetUsed, LumoMemory*, u64*)
FAKE2(lumoMemoryGetUtilization, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetGuestTotal, LumoMemory*, u64*)
FAKE2(lumoMemoryGetGuestUsed, LumoMemory*, u64*)
FAKE2(lumoMemoryGetGuestUtilization, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetClock, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetMaxClock, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetBusWidth, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetBandwidth, LumoMemory*, unsigned*)
FAKE2(lumoMemoryGetSpeed, LumoMemory*, unsigned*)
FAKE3(lumoMemoryGetVendor, LumoMemory*, char*, unsigned)
FAKE2(lumoMemoryGetType, LumoMemory*, unsigned*)
FAKE3(lumoMemoryGetEccMode, LumoMemory*, unsigned*, unsigned*)
FAKE2(lumoMemorySetEccMode, LumoMemory*, unsigned)
FAKE3(lumoMemoryGetRetiredPagesCount, LumoMemory*, unsigned*, unsigned*)
FAKE4(lumoMemoryGetRetiredPages, LumoMemory*, unsigned, unsigned, LumoRetiredPage*)
FAKE2(lumoMemoryGetRetiredPagesPendingStatus, LumoMemory*, unsigned*)
FAKE5(lumoMemoryGetEccErrorCounter, LumoMemory*, unsigned, unsigned, unsigned, u64*)

FAKE2(lumoVpuGetUtilization, LumoVpu*, LumoVpuUtilization*)
FAKE2(lumoVpuGetClock, LumoVpu*, unsigned*)
FAKE2(lumoVpuGetMaxClock, LumoVpu*, unsigned*)
FAKE3(lumoVpuGetCodecCapacity, LumoVpu*, unsigned*, unsigned*)
FAKE3(lumoVpuGetEncoderSessionStates, LumoVpu*, unsigned*, unsigned)
FAKE3(lumoVpuGetDecoderSessionStates, LumoVpu*, unsigned*, unsigned)
FAKE3(lumoVpuGetEncoderSessionMetrics, LumoVpu*, unsigned, LumoVpuSessionMetrics*)
FAKE3(lumoVpuGetDecoderSessionMetrics, LumoVpu*, unsigned, LumoVpuSessionMetrics*)

FAKE2(lumoDeviceGetSupportedEventTypes, LumoDevice*, u64*)
FAKE5(lumoDeviceGetEventDataByEventType, LumoDevice*, u64, LumoEventData*, unsigned, unsigned*)
FAKE5(lumoGetTargetUuidEventDataByEventType, const char*, u64, LumoEventData*, unsigned, unsigned*)
