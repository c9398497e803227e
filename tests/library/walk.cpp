#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "calls/ask.h"
#include "calls/operations.h"

// Calls every function of the library on every device and vGPU, whatever is answered. It ends with 0 unless
// the library writes where it must not, or fails to start for no reason of the driver's.

namespace {

using tolk_test::Operation;
using tolk_test::Subject;

bool intact = true;

/// A call may fail in any way but this one.
void check(std::string_view name, const std::string& answer) {
  if (answer.starts_with(tolk_test::kFault) && answer.find("wrote") != std::string::npos) {
    std::printf("%.*s: %s\n", static_cast<int>(name.size()), name.data(), answer.c_str());
    intact = false;
  }
}

void askAll(const Subject& subject) {
  for (const Operation& reading : tolk_test::readings()) {
    check(reading.name, reading.ask(subject));
  }
}

void changeAll(const Subject& subject) {
  for (const Operation& change : tolk_test::changes()) {
    check(change.name, change.ask(subject));
  }
}

/// Selectors and ranges that the tables leave out.
void askTheRest(const Subject& subject) {
  for (const unsigned place : {0U, 1U, 2U, 3U, 4U, 5U, 31U, ~0U}) {
    check("engine", ask(subject, lumoGpuGetEngineUtilization, place));
    check("core", ask(subject, lumoGpuGetCoreUtilization, place));
    check("sensor", ask(subject, lumoGpuGetSensorTemperature, place));
    check("fan", ask(subject, lumoDeviceGetFanSpeed, place));
    check("display", ask(subject, lumoDeviceGetDisplayInterfaceSpec, place));
    check("link", ask(subject, lumoDeviceGetSablinkState, place));
    check("capability", ask(subject, lumoDeviceGetSablinkCapStatus, 0U, place));
    check("error", ask(subject, lumoDeviceGetSablinkErrorCounter, 0U, place));
    check("remote", ask(subject, lumoDeviceGetSablinkRemoteDevice, place));
    check("lanes", ask(subject, lumoDeviceGetSablinkSerdesStatus, place));
    check("encoder", ask(subject, lumoVpuGetEncoderSessionMetrics, place));
    check("decoder", ask(subject, lumoVpuGetDecoderSessionMetrics, place));
    check("configuration", ask(subject, lumoDeviceGetMpcConfiguration, place));
    check("reach", ask(subject, lumoDeviceGetP2PStatus, subject.other, place));
    check("ecc", ask(subject, lumoMemoryGetEccErrorCounter, 1U, 1U, place));
    check("units", ask(subject, lumoGpuCountCoreMpx, 1ULL << (place % 64)));
  }
  LumoPfmSample* sample = nullptr;
  if (lumoPfmSampleAlloc(&sample) == LUMO_RETURN_SUCCESS) {
    lumoPfmSampleGet(subject, sample);
    LumoPfmMetricsRequest request{};
    request.sample1 = request.sample2 = sample;
    lumoPfmMetricsGet(&request);
    lumoPfmSampleFree(sample);
  }
  lumoDeviceFreeGpu(subject);
  lumoDeviceFreeMemory(subject);
  lumoDeviceFreeVpu(subject);
  lumoDeviceFreeVirtDevice(subject);
  lumoLibraryFreeDevice(subject);
}

void askSystem(LumoLibrary* library) {
  LumoSystem* system = nullptr;
  check("version", tolk_test::askText([&](char* text, unsigned size) {
          return lumoLibraryGetVersion(library, text, static_cast<int>(size));
        }));
  if (lumoLibraryInitSystem(library, &system) != LUMO_RETURN_SUCCESS) {
    return;
  }
  check("driver", tolk_test::askText([&](char* text, unsigned size) {
          return lumoSystemGetDriverVersion(system, text, size);
        }));
  check("process", tolk_test::askText([&](char* text, unsigned size) {
          return lumoSystemGetProcessName(system, 4242, text, size);
        }));
  lumoLibraryFreeSystem(system);
  check("events", tolk_test::askEvents([](LumoEventData* events, unsigned capacity, unsigned* count) {
          return lumoGetTargetUuidEventDataByEventType("00000000-0000-0000-0000-000000000000", LUMO_EVENT_XID,
                                                       events, capacity, count);
        }));
}

/// The device and the vGPUs that it carries.
std::vector<Subject> subjectsAt(LumoLibrary* library, unsigned index, unsigned count) {
  LumoDevice* device = nullptr;
  LumoDevice* other = nullptr;
  lumoLibraryInitDeviceByIndex(library, index, &device);
  lumoLibraryInitDeviceByIndex(library, (index + 1) % count, &other);
  std::vector<Subject> subjects{Subject::of(device, other)};
  unsigned vgpus = 0;
  lumoDeviceCountActiveVirtDevices(device, &vgpus);
  std::vector<char> uuids((vgpus + 1UL) * LUMO_UUID_SIZE);
  lumoDeviceGetActiveVirtDeviceUuids(device, uuids.data(), LUMO_UUID_SIZE, vgpus + 1);
  for (unsigned i = 0; i < vgpus; ++i) {
    LumoDevice* vgpu = nullptr;
    if (lumoDeviceInitVirtDevice(device, &uuids[i * 1UL * LUMO_UUID_SIZE], &vgpu) == LUMO_RETURN_SUCCESS) {
      subjects.push_back(Subject::of(vgpu, device));
    }
  }
  return subjects;
}

/// Divides each GPU that can be, after which only the library's handle is left.
void divideAll(LumoLibrary* library, unsigned count) {
  for (unsigned index = 0; index < count; ++index) {
    LumoLibrary* again = nullptr;
    LumoDevice* device = nullptr;
    unsigned configuration = 1;
    if (lumoLibraryInit(&again) != LUMO_RETURN_SUCCESS) {
      return;
    }
    if (lumoLibraryInitDeviceByIndex(again, index, &device) == LUMO_RETURN_SUCCESS) {
      lumoLibrarySetMpcConfigurationInBatch(library, 1, &device, &configuration);
    }
    lumoLibraryShutDown(again);
  }
}

}  // namespace

int main() {
  LumoLibrary* library = nullptr;
  const LumoReturn started = lumoLibraryInit(&library);
  if (started != LUMO_RETURN_SUCCESS) {
    return started == LUMO_RETURN_DRIVER_NOT_LOADED || started == LUMO_RETURN_UNKNOWN_ERROR ||
                   started == LUMO_RETURN_DRIVER_ACCESS_FAILED
               ? 0
               : 3;
  }
  askSystem(library);
  unsigned count = 0;
  lumoLibraryCountDevice(library, &count);
  std::vector<Subject> subjects;
  for (unsigned index = 0; index < count; ++index) {
    for (const Subject& subject : subjectsAt(library, index, count)) {
      askAll(subject);
      askTheRest(subject);
      subjects.push_back(subject);
    }
  }
  // Changes come after all questions, and once more questions after these.
  for (const Subject& subject : subjects) {
    changeAll(subject);
  }
  for (const Subject& subject : subjects) {
    askAll(subject);
  }
  divideAll(library, count);
  lumoLibraryShutDown(library);
  return intact ? 0 : 5;
}
