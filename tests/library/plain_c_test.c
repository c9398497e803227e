/* The header alone, in plain C: every function has C linkage, and every record has its size. */
#include <lumo.h>

_Static_assert(sizeof(LumoPciInfo) == 80, "LumoPciInfo");
_Static_assert(sizeof(LumoMpcProfile) == 88, "LumoMpcProfile");
_Static_assert(sizeof(LumoProcessMemUsage) == 32, "LumoProcessMemUsage");
_Static_assert(sizeof(((LumoLogConfiguration *)0)->filePath) == 200, "LumoLogConfiguration");

static unsigned lines;

static void countLine(const char *message, unsigned length) {
  lines += message[length] == '\0';
}

static int sameText(const char *a, const char *b) {
  while (*a != '\0' && *a == *b) {
    ++a;
    ++b;
  }
  return *a == *b;
}

/* Counts the step and leaves with its number when the call does not give the code. */
#define STEP(call, code)  \
  do {                    \
    ++step;               \
    if ((call) != (code)) \
      return step;        \
  } while (0)

int main(void) {
  int step = 0;
  unsigned count = 0;
  unsigned number = 0;
  unsigned other = 0;
  unsigned long long wide = 0;
  int degrees = 0;
  char text[256];
  LumoLogConfiguration log;
  LumoLibrary *library = 0;
  LumoSystem *system = 0;
  LumoDevice *device = 0;
  LumoDevice *same = 0;
  LumoGpu *gpu = 0;
  LumoMemory *memory = 0;
  LumoVpu *vpu = 0;
  LumoPciInfo pci;
  LumoMpcProfile profile;
  LumoProcessMemUsage usages[8];

  STEP(lumoLogGetConfiguration(&log), LUMO_RETURN_SUCCESS);
  log.callbackLevel = 4;
  log.callback = countLine;
  STEP(lumoLogSetConfiguration(&log), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryGetLogConfiguration(&log), LUMO_RETURN_SUCCESS);
  STEP(lumoLibrarySetLogConfiguration(&log), LUMO_RETURN_SUCCESS);

  STEP(lumoLibraryInit(&library), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryGetVersion(library, text, (int)sizeof text), LUMO_RETURN_SUCCESS);
  STEP(sameText(text, "2.4.0"), 1);
  STEP(lumoLibraryCountDevice(library, &count), LUMO_RETURN_SUCCESS);
  STEP(count, 2);
  STEP(lumoLibraryInitSystem(library, &system), LUMO_RETURN_SUCCESS);
  STEP(lumoSystemGetDriverVersion(system, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(lumoSystemGetProcessName(system, 4242, text, sizeof text), LUMO_RETURN_SUCCESS);

  STEP(lumoLibraryInitDeviceByIndex(library, 0, &device), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetUUID(device, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryInitDeviceByUuid(library, text, &same), LUMO_RETURN_SUCCESS);
  STEP(same == device, 1);
  STEP(lumoDeviceGetPciInfo(device, &pci), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryInitDeviceByPciSbdf(library, pci.sbdf, &same), LUMO_RETURN_SUCCESS);
  STEP(same == device, 1);
  STEP(lumoDeviceGetIndex(device, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetName(device, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetProperty(device, &wide), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetPerformanceState(device, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceCountProcessMemoryUsages(device, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetProcessMemoryUsages(device, usages, 8), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceCountMpcInstances(device, &number), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoDeviceGetMpcInstances(device, &same, 1), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoDeviceGetMpcParentDevice(device, &same), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoDeviceGetMpcInstanceIndex(device, &number), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoDeviceGetMpcProfileInfo(device, &profile), LUMO_RETURN_NOT_SUPPORTED);

  STEP(lumoDeviceInitGpu(device, &gpu), LUMO_RETURN_SUCCESS);
  STEP(lumoGpuGetUtilization(gpu, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoGpuGetTemperature(gpu, &degrees), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceInitMemory(device, &memory), LUMO_RETURN_SUCCESS);
  STEP(lumoMemoryGetTotal(memory, &wide), LUMO_RETURN_SUCCESS);
  STEP(lumoMemoryGetUsed(memory, &wide), LUMO_RETURN_SUCCESS);
  STEP(lumoMemoryGetEccMode(memory, &number, &other), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceInitVpu(device, &vpu), LUMO_RETURN_SUCCESS);

  lines = 0;
  STEP(lumoDeviceFreeVpu(vpu), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceFreeMemory(memory), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceFreeGpu(gpu), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryFreeDevice(device), LUMO_RETURN_SUCCESS);
  STEP(lumoLibraryFreeSystem(system), LUMO_RETURN_SUCCESS);
  STEP(lines, 5);
  STEP(lumoLibraryShutDown(library), LUMO_RETURN_SUCCESS);
  STEP(sameText(lumoReturnText(LUMO_RETURN_BUSY), "Unknown Error"), 1);
  return 0;
}
