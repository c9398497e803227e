/* Lists every device that the library knows: index, PCI address, kind, name and uuid. */
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
  printf("%-5u  %-12s  %-12s  %-24s  %s\n", index, pci.sbdf, kindOf(property), name, uuid);
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
  printf("%-5s  %-12s  %-12s  %-24s  %s\n", "index", "address", "kind", "name", "uuid");
  for (unsigned index = 0; index < count; ++index) {
    status = listDevice(library, index);
    if (status != LUMO_RETURN_SUCCESS) {
      fprintf(stderr, "device %u: %s\n", index, lumoReturnText(status));
    }
  }
  lumoLibraryShutDown(library);
  return EXIT_SUCCESS;
}
