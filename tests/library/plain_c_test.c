/* The header alone, in plain C: every function has C linkage, and every record has its size. */
#include <lumo.h>

_Static_assert(sizeof(LumoPciInfo) == 80, "LumoPciInfo");
_Static_assert(sizeof(LumoMpcProfile) == 88, "LumoMpcProfile");
_Static_assert(sizeof(LumoProcessMemUsage) == 32, "LumoProcessMemUsage");
_Static_assert(sizeof(LumoPciSlotInfo) == 68, "LumoPciSlotInfo");
_Static_assert(sizeof(LumoPcieBandWidth) == 64, "LumoPcieBandWidth");
_Static_assert(sizeof(LumoDispIntfSpec) == 20, "LumoDispIntfSpec");
_Static_assert(sizeof(LumoProcessGpuUtilization) == 32, "LumoProcessGpuUtilization");
_Static_assert(sizeof(LumoMpcConfiguration) == 196, "LumoMpcConfiguration");
_Static_assert(sizeof(LumoSablinkSpec) == 12, "LumoSablinkSpec");
_Static_assert(sizeof(LumoSablinkLayout) == 8, "LumoSablinkLayout");
_Static_assert(sizeof(LumoSablinkPerfData) == 40, "LumoSablinkPerfData");
_Static_assert(sizeof(LumoSablinkSerdesStatus) == 68, "LumoSablinkSerdesStatus");
_Static_assert(sizeof(LumoVirtType) == 136, "LumoVirtType");
_Static_assert(sizeof(LumoVgpuOverCommitInfo) == 8, "LumoVgpuOverCommitInfo");
_Static_assert(sizeof(LumoRetiredPage) == 56, "LumoRetiredPage");
_Static_assert(sizeof(LumoMemoryEdcCounters) == 16, "LumoMemoryEdcCounters");
_Static_assert(sizeof(LumoVpuUtilization) == 12, "LumoVpuUtilization");
_Static_assert(sizeof(LumoVpuSessionMetrics) == 32, "LumoVpuSessionMetrics");
_Static_assert(sizeof(LumoXidRecord) == 168, "LumoXidRecord");
_Static_assert(sizeof(LumoEventData) == 232, "LumoEventData");
_Static_assert(sizeof(LumoPfmMetric) == 40, "LumoPfmMetric");
_Static_assert(sizeof(((LumoLogConfiguration*)0)->filePath) == 200, "LumoLogConfiguration");

static unsigned lines;

static void countLine(const char* message, unsigned length) {
  lines += message[length] == '\0';
}

static int sameText(const char* a, const char* b) {
  while (*a != '\0' && *a == *b) {
    ++a;
    ++b;
  }
  return *a == *b;
}

/* Counts the step and leaves with its number when the call does not give the code. */
#define STEP(call, code)               \
  do {                                 \
    ++step;                            \
    if ((call) != (code)) return step; \
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
  LumoLibrary* library = 0;
  LumoSystem* system = 0;
  LumoDevice* device = 0;
  LumoDevice* same = 0;
  LumoGpu* gpu = 0;
  LumoMemory* memory = 0;
  LumoVpu* vpu = 0;
  LumoPciInfo pci;
  LumoMpcProfile profile;
  LumoProcessMemUsage usages[8];
  LumoProcessGpuUtilization shares[8];
  LumoPciSlotInfo slot;
  LumoPcieBandWidth traffic;
  LumoDispIntfSpec display;
  LumoSablinkSpec links;
  LumoSablinkLayout layouts[8];
  LumoMemoryEdcCounters errors;
  LumoRetiredPage page;
  LumoVpuUtilization load;
  LumoEventData event;
  LumoPfmSample* sample = 0;
  int level = 0;

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

  /* What a device is, its place on the bus, its board. */
  STEP(lumoLibraryInitDeviceByIndex(library, 1, &same), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetType(device, &number), LUMO_RETURN_SUCCESS);
  STEP(number, LUMO_DEVICE_PHYSICAL);
  STEP(lumoDeviceGetSerialNumber(device, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetMiscPath(device, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(sameText(text, "/dev/ovgpu.0"), 1);
  STEP(lumoDeviceGetPcieSlotInfo(device, &slot), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceStartPciePerf(device, 100, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetPcieBandWidth(device, number, &traffic), LUMO_RETURN_SUCCESS);
  STEP(traffic.samples, 1);
  STEP(lumoDeviceStopPciePerf(device, number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetPowerUsage(device, &number), LUMO_RETURN_SUCCESS);
  STEP(number, 85500);
  STEP(lumoDeviceGetFanSpeed(device, 0, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetDisplayInterfaceSpec(device, 99, &display), LUMO_RETURN_INVALID_ARGUMENT);
  /* Among others. */
  STEP(lumoDeviceGetTopologyLevel(device, same, &level), LUMO_RETURN_SUCCESS);
  STEP(level, LUMO_TOPOLOGY_SYSTEM);
  STEP(lumoDeviceGetP2PStatus(device, same, 0, &number), LUMO_RETURN_SUCCESS);
  STEP(number, LUMO_P2P_OK);
  STEP(lumoDeviceGetCpuAffinityStringWithinNode(device, text, sizeof text), LUMO_RETURN_SUCCESS);
  STEP(sameText(text, "0-31"), 1);
  STEP(lumoDeviceGetProcessGpuUtilizations(device, shares, 8), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetSablinkSpec(device, &links), LUMO_RETURN_SUCCESS);
  STEP(links.linkCount, 4);
  STEP(lumoDeviceGetSablinkLayouts(device, same, layouts, 8), LUMO_RETURN_SUCCESS);
  STEP(layouts[3].remotePort, 3);
  STEP(lumoDeviceGetSablinkState(device, 0, &number), LUMO_RETURN_SUCCESS);
  STEP(number, LUMO_SABLINK_UP);
  STEP(lumoDeviceGetMpcMode(device, &number), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoDeviceCountSupportedVirtTypes(device, &number), LUMO_RETURN_SUCCESS);
  STEP(number, 0);
  /* Its parts, and what happened to it. */
  STEP(lumoMemoryGetEdcCounters(memory, &errors), LUMO_RETURN_SUCCESS);
  STEP(lumoMemoryGetRetiredPages(memory, LUMO_RETIREMENT_DOUBLE_BIT, 1, &page), LUMO_RETURN_SUCCESS);
  STEP(page.address, 0x2bc01000);
  STEP(lumoVpuGetUtilization(vpu, &load), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetSupportedEventTypes(device, &wide), LUMO_RETURN_SUCCESS);
  STEP(wide, LUMO_EVENT_XID);
  STEP(lumoDeviceGetEventDataByEventType(device, LUMO_EVENT_XID, &event, 0, &number), LUMO_RETURN_SUCCESS);
  STEP(lumoPfmSampleAlloc(&sample), LUMO_RETURN_SUCCESS);
  STEP(lumoPfmSampleGet(device, sample), LUMO_RETURN_NOT_SUPPORTED);
  STEP(lumoPfmSampleFree(sample), LUMO_RETURN_SUCCESS);
  /* Changes. */
  STEP(lumoDeviceSetPerformanceState(device, 4), LUMO_RETURN_SUCCESS);
  STEP(lumoDeviceGetPerformanceState(device, &number), LUMO_RETURN_SUCCESS);
  STEP(number, 4);
  STEP(lumoGpuReset(gpu), LUMO_RETURN_SUCCESS);

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
