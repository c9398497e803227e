#include "fake_lumo.h"

#include <cstdio>
#include <cstring>

namespace tolk_test {

FakeLumo& fakeLumo() {
  static FakeLumo fake;
  return fake;
}

LumoReturn FakeLumo::answer(const char* entryPoint) {
  calls.emplace_back(entryPoint);
  auto& statuses = failures[entryPoint];
  if (statuses.empty()) return LUMO_RETURN_SUCCESS;
  const LumoReturn status = statuses.front();
  statuses.pop_front();
  return status;
}

namespace {

/// Handles are only compared and handed on.
template <class Handle>
Handle* handleOf(unsigned number) {
  static char cells[64];
  return reinterpret_cast<Handle*>(&cells[number]);
}

LumoReturn answerText(const char* entryPoint, const std::string& text, char* buffer, unsigned length) {
  std::snprintf(buffer, length, "%s", text.c_str());
  return fakeLumo().answer(entryPoint);
}

template <class Output, class Value>
LumoReturn answerValue(const char* entryPoint, const Value& value, Output* output) {
  *output = static_cast<Output>(value);
  return fakeLumo().answer(entryPoint);
}

}  // namespace
}  // namespace tolk_test

using namespace tolk_test;

LumoReturn lumoLogGetConfiguration(LumoLogConfiguration* configuration) {
  return answerValue(__func__, fakeLumo().log, configuration);
}
LumoReturn lumoLogSetConfiguration(const LumoLogConfiguration* configuration) {
  fakeLumo().log = *configuration;
  return fakeLumo().answer(__func__);
}
LumoReturn lumoLibraryInit(LumoLibrary** library) {
  return answerValue(__func__, handleOf<LumoLibrary>(0), library);
}
LumoReturn lumoLibraryShutDown(LumoLibrary*) {
  return fakeLumo().answer(__func__);
}
LumoReturn lumoLibraryCountDevice(LumoLibrary*, unsigned* count) {
  return answerValue(__func__, fakeLumo().deviceCount, count);
}
LumoReturn lumoLibraryInitSystem(LumoLibrary*, LumoSystem** system) {
  return answerValue(__func__, handleOf<LumoSystem>(1), system);
}
LumoReturn lumoLibraryFreeSystem(LumoSystem*) {
  return fakeLumo().answer(__func__);
}
LumoReturn lumoLibraryInitDeviceByIndex(LumoLibrary*, unsigned index, LumoDevice** device) {
  return answerValue(__func__, handleOf<LumoDevice>(8 + index), device);
}
LumoReturn lumoLibraryInitDeviceByUuid(LumoLibrary*, const char* uuid, LumoDevice** device) {
  return answerValue((std::string(__func__) + " " + uuid).c_str(), handleOf<LumoDevice>(8), device);
}
LumoReturn lumoSystemGetDriverVersion(LumoSystem*, char* version, unsigned length) {
  return answerText(__func__, fakeLumo().version, version, length);
}
LumoReturn lumoSystemGetProcessName(LumoSystem*, unsigned, char* name, unsigned length) {
  return answerText(__func__, fakeLumo().name, name, length);
}
LumoReturn lumoDeviceInitGpu(LumoDevice*, LumoGpu** gpu) {
  return answerValue(__func__, handleOf<LumoGpu>(2), gpu);
}
LumoReturn lumoDeviceInitMemory(LumoDevice*, LumoMemory** memory) {
  return answerValue(__func__, handleOf<LumoMemory>(3), memory);
}
LumoReturn lumoDeviceInitVpu(LumoDevice*, LumoVpu** vpu) {
  return answerValue(__func__, handleOf<LumoVpu>(4), vpu);
}
LumoReturn lumoDeviceGetIndex(LumoDevice*, unsigned* index) {
  return answerValue(__func__, fakeLumo().index, index);
}
LumoReturn lumoDeviceGetUUID(LumoDevice*, char* uuid, unsigned length) {
  return answerText(__func__, fakeLumo().uuid, uuid, length);
}
LumoReturn lumoDeviceGetName(LumoDevice*, char* name, unsigned length) {
  return answerText(__func__, fakeLumo().name, name, length);
}
LumoReturn lumoDeviceGetProperty(LumoDevice*, unsigned long long* property) {
  return answerValue(__func__, fakeLumo().property, property);
}
LumoReturn lumoDeviceGetPciInfo(LumoDevice*, LumoPciInfo* info) {
  return answerValue(__func__, fakeLumo().pci, info);
}
LumoReturn lumoDeviceGetPerformanceState(LumoDevice*, unsigned* state) {
  return answerValue(__func__, fakeLumo().value, state);
}
LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice*, unsigned* count) {
  const auto& fake = fakeLumo();
  return answerValue(__func__, fake.processesAtCount != 0 ? fake.processesAtCount : fake.processes.size(),
                     count);
}
LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice*, LumoProcessMemUsage* usages, unsigned capacity) {
  const auto& processes = fakeLumo().processes;
  std::copy_n(processes.begin(), std::min<std::size_t>(capacity, processes.size()), usages);
  return fakeLumo().answer(__func__);
}
LumoReturn lumoDeviceCountMpcInstances(LumoDevice*, unsigned* count) {
  return answerValue(__func__, fakeLumo().instanceCount, count);
}
LumoReturn lumoDeviceGetMpcInstances(LumoDevice*, LumoDevice** instances, unsigned capacity) {
  for (unsigned i = 0; i < capacity; ++i) instances[i] = handleOf<LumoDevice>(16 + i);
  return fakeLumo().answer(__func__);
}
LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice*, LumoDevice** parent) {
  return answerValue(__func__, handleOf<LumoDevice>(8), parent);
}
LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice*, unsigned* index) {
  return answerValue(__func__, fakeLumo().value, index);
}
LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice*, LumoMpcProfile* profile) {
  return answerValue(__func__, fakeLumo().profile, profile);
}
LumoReturn lumoGpuGetUtilization(LumoGpu*, unsigned* utilization) {
  return answerValue(__func__, fakeLumo().value, utilization);
}
LumoReturn lumoGpuGetTemperature(LumoGpu*, int* temperature) {
  return answerValue(__func__, fakeLumo().value, temperature);
}
LumoReturn lumoMemoryGetTotal(LumoMemory*, unsigned long long* total) {
  return answerValue(__func__, fakeLumo().value, total);
}
LumoReturn lumoMemoryGetUsed(LumoMemory*, unsigned long long* used) {
  return answerValue(__func__, fakeLumo().value, used);
}
LumoReturn lumoMemoryGetEccMode(LumoMemory*, unsigned* current, unsigned* pending) {
  *pending = fakeLumo().value;
  return answerValue(__func__, fakeLumo().value, current);
}
