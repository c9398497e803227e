/* Lists every device that the library knows: index, PCI address, kind, name and uuid; below a GPU that is
 * shared, its vGPUs with their numbers and types. */
#include <lumo.h>
#include <stdio.h>
#include <stdlib.h>

/* What a device is, by the property word. */
static const char *kindOf(unsigned long long property) {
  switch ((property & LUMO_PROPERTY_MPC_TYPE_MASK) >> LUMO_PROPERTY_MPC_TYPE_SHIFT) {
    case 1:
      return "MPC parent";
    case 2:
      return "MPC instance";
    default:
      return (property & LUMO_PROPERTY_ROLE_MASK) != 0 ? "guest" : "physical";
  }
}

static void printRow(const char *index, const char *address, const char *kind, const char *name,
                     const char *uuid) {
  printf("%-5s  %-12s  %-12s  %-24s  %s\n", index, address, kind, name, uuid);
}

static void listVirtualDevice(LumoDevice *gpu, const char *uuid) {
  LumoDevice *device;
  LumoVirtType type = {.name = "-"};
  char kind[24] = "vGPU";
  unsigned number = 0;
  /* It may have been removed since its uuid was read. */
  if (lumoDeviceInitVirtDevice(gpu, uuid, &device) != LUMO_RETURN_SUCCESS) {
    return;
  }
  lumoDeviceGetVirtType(device, &type);
  if (lumoDeviceGetVgpuId(device, &number) == LUMO_RETURN_SUCCESS) {
    snprintf(kind, sizeof kind, "vGPU %u", number);
  }
  printRow("", "", kind, type.name, uuid);
}

static void listVirtualDevices(LumoDevice *gpu) {
  unsigned count = 0;
  if (lumoDeviceCountActiveVirtDevices(gpu, &count) != LUMO_RETURN_SUCCESS || count == 0) {
    return;
  }
  char(*uuids)[LUMO_UUID_SIZE] = calloc(count, sizeof *uuids);
  if (uuids != NULL &&
      lumoDeviceGetActiveVirtDeviceUuids(gpu, uuids[0], sizeof *uuids, count) == LUMO_RETURN_SUCCESS) {
    for (unsigned i = 0; i < count; ++i) {
      listVirtualDevice(gpu, uuids[i]);
    }
  }
  free(uuids);
}

static LumoReturn listDevice(LumoLibrary *library, unsigned index) {
  LumoDevice *device;
  LumoReturn status = lumoLibraryInitDeviceByIndex(library, index, &device);
  if (status != LUMO_RETURN_SUCCESS) {
    return status;
  }
  /* What a device cannot tell is left as a dash: a guest, for one, has no uuid. */
  LumoPciInfo pci = {.sbdf = "-"};
  char name[256] = "-";
  char uuid[LUMO_UUID_SIZE] = "-";
  unsigned long long property = 0;
  lumoDeviceGetPciInfo(device, &pci);
  lumoDeviceGetName(device, name, sizeof name);
  lumoDeviceGetUUID(device, uuid, sizeof uuid);
  lumoDeviceGetProperty(device, &property);
  char number[16];
  snprintf(number, sizeof number, "%u", index);
  printRow(number, pci.sbdf, kindOf(property), name, uuid);
  if ((property & LUMO_PROPERTY_VIRTUALIZATION_CAPABLE) != 0) {
    listVirtualDevices(device);
  }
  return LUMO_RETURN_SUCCESS;
}

int main(void) {
  LumoLibrary *library;
  LumoReturn status = lumoLibraryInit(&library);
  if (status != LUMO_RETURN_SUCCESS) {
    fprintf(stderr, "the library cannot start: %s\n", lumoReturnText(status));
    return EXIT_FAILURE;
  }
  unsigned count = 0;
  lumoLibraryCountDevice(library, &count);
  printRow("index", "address", "kind", "name", "uuid");
  for (unsigned index = 0; index < count; ++index) {
    status = listDevice(library, index);
    if (status != LUMO_RETURN_SUCCESS) {
      fprintf(stderr, "device %u: %s\n", index, lumoReturnText(status));
    }
  }
  lumoLibraryShutDown(library);
  return EXIT_SUCCESS;
}
