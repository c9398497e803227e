#include <lumo.h>

#include <cstring>
#include <vector>

// Calls every query of the library on every device, whatever it answers. It ends with 0 unless the
// library cannot be started, which is for the caller to judge, or writes past an output.

namespace {

bool intact = true;

/// A text buffer with a border.
struct Text {
  char text[256];
  char border[16];
  Text() { std::memset(this, '#', sizeof *this); }
  ~Text() {
    for (const char c : border) {
      intact = intact && c == '#';
    }
  }
};

void walkMpc(LumoDevice* device) {
  unsigned number = 0;
  if (lumoDeviceCountMpcInstances(device, &number) == LUMO_RETURN_SUCCESS) {
    std::vector<LumoDevice*> instances(number + 1);
    lumoDeviceGetMpcInstances(device, instances.data(), number);
  }
  LumoDevice* parent = nullptr;
  LumoMpcProfile profile;
  lumoDeviceGetMpcParentDevice(device, &parent);
  lumoDeviceGetMpcInstanceIndex(device, &number);
  lumoDeviceGetMpcProfileInfo(device, &profile);
}

void walkParts(LumoDevice* device) {
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
  unsigned number = 0;
  unsigned other = 0;
  unsigned long long wide = 0;
  int degrees = 0;
  if (lumoDeviceInitGpu(device, &gpu) == LUMO_RETURN_SUCCESS) {
    lumoGpuGetUtilization(gpu, &number);
    intact = intact && number <= 100;
    lumoGpuGetTemperature(gpu, &degrees);
  }
  if (lumoDeviceInitMemory(device, &memory) == LUMO_RETURN_SUCCESS) {
    lumoMemoryGetTotal(memory, &wide);
    lumoMemoryGetUsed(memory, &wide);
    lumoMemoryGetEccMode(memory, &number, &other);
  }
  lumoDeviceInitVpu(device, &vpu);
}

void walk(LumoDevice* device) {
  unsigned number = 0;
  unsigned long long wide = 0;
  LumoPciInfo info;
  Text uuid;
  Text name;
  lumoDeviceGetIndex(device, &number);
  lumoDeviceGetUUID(device, uuid.text, sizeof uuid.text);
  lumoDeviceGetName(device, name.text, sizeof name.text);
  lumoDeviceGetProperty(device, &wide);
  lumoDeviceGetPciInfo(device, &info);
  lumoDeviceGetPerformanceState(device, &number);
  if (lumoDeviceCountProcessMemoryUsages(device, &number) == LUMO_RETURN_SUCCESS) {
    std::vector<LumoProcessMemUsage> usages(number + 1);
    lumoDeviceGetProcessMemoryUsages(device, usages.data(), number);
  }
  walkMpc(device);
  walkParts(device);
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
  LumoSystem* system = nullptr;
  if (lumoLibraryInitSystem(library, &system) == LUMO_RETURN_SUCCESS) {
    Text version;
    Text process;
    lumoSystemGetDriverVersion(system, version.text, sizeof version.text);
    lumoSystemGetProcessName(system, 4242, process.text, sizeof process.text);
  }
  unsigned count = 0;
  lumoLibraryCountDevice(library, &count);
  for (unsigned index = 0; index < count; ++index) {
    LumoDevice* device = nullptr;
    if (lumoLibraryInitDeviceByIndex(library, index, &device) != LUMO_RETURN_SUCCESS) {
      return 4;
    }
    walk(device);
  }
  lumoLibraryShutDown(library);
  return intact ? 0 : 5;
}
