/* Prints load, memory and temperature of every device once a second.
 *
 *   sample_utilization [COUNT]     COUNT samples, or until interrupted
 */
#include <lumo.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

enum { MOST_DEVICES = 256 };

/* One device's parts. Handles need no release: they live until the library is shut down. */
typedef struct Parts {
  LumoGpu *gpu;
  LumoMemory *memory;
} Parts;

static unsigned findParts(LumoLibrary *library, Parts parts[MOST_DEVICES]) {
  unsigned found = 0;
  unsigned count = 0;
  lumoLibraryCountDevice(library, &count);
  for (unsigned index = 0; index < count && found < MOST_DEVICES; ++index) {
    LumoDevice *device;
    if (lumoLibraryInitDeviceByIndex(library, index, &device) == LUMO_RETURN_SUCCESS &&
        lumoDeviceInitGpu(device, &parts[found].gpu) == LUMO_RETURN_SUCCESS &&
        lumoDeviceInitMemory(device, &parts[found].memory) == LUMO_RETURN_SUCCESS) {
      ++found;
    }
  }
  return found;
}

/* A number in its column, or a dash where the device has no such value: an MPC parent, for one, has no
 * load of its own. */
static void printCell(LumoReturn status, long long value, const char *unit) {
  if (status == LUMO_RETURN_SUCCESS) {
    printf("  %8lld %-3s", value, unit);
  } else {
    printf("  %8s %-3s", "-", unit);
  }
}

static void printSample(unsigned index, const Parts *parts) {
  unsigned utilization = 0;
  unsigned long long used = 0;
  unsigned long long total = 0;
  int temperature = 0;
  const LumoReturn loaded = lumoGpuGetUtilization(parts->gpu, &utilization);
  const LumoReturn usedRead = lumoMemoryGetUsed(parts->memory, &used);
  const LumoReturn totalRead = lumoMemoryGetTotal(parts->memory, &total);
  const LumoReturn warm = lumoGpuGetTemperature(parts->gpu, &temperature);
  printf("%3u", index);
  printCell(loaded, utilization, "%");
  printCell(usedRead, (long long)(used >> 20), "MiB");
  printCell(totalRead, (long long)(total >> 20), "MiB");
  printCell(warm, temperature, "C");
  printf("\n");
}

int main(int argc, char **argv) {
  static Parts parts[MOST_DEVICES];
  const long samples = argc > 1 ? strtol(argv[1], NULL, 10) : -1;
  LumoLibrary *library;
  const LumoReturn status = lumoLibraryInit(&library);
  if (status != LUMO_RETURN_SUCCESS) {
    fprintf(stderr, "the library cannot start: %s\n", lumoReturnText(status));
    return EXIT_FAILURE;
  }
  const unsigned count = findParts(library, parts);
  for (long sample = 0; samples < 0 || sample < samples; ++sample) {
    if (sample > 0) {
      sleep(1);
    }
    for (unsigned index = 0; index < count; ++index) {
      printSample(index, &parts[index]);
    }
    fflush(stdout);
  }
  lumoLibraryShutDown(library);
  return EXIT_SUCCESS;
}
