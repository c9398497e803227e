/* Prints the faults of all GPUs as they happen, each with the process that was hit.
 *
 *   watch_faults [COUNT]     COUNT faults, or until interrupted
 */
#include <lumo.h>
#include <stdio.h>
#include <stdlib.h>

enum { WAIT_MS = 1000 };

/* Listens to every device that reports faults, and returns how many those are. */
static unsigned listenToAll(LumoLibrary *library, LumoEvent *event) {
  unsigned listening = 0;
  unsigned count = 0;
  lumoLibraryCountDevice(library, &count);
  for (unsigned index = 0; index < count; ++index) {
    LumoDevice *device;
    if (lumoLibraryInitDeviceByIndex(library, index, &device) == LUMO_RETURN_SUCCESS &&
        lumoEventRegister(event, device, LUMO_EVENT_XID) == LUMO_RETURN_SUCCESS) {
      ++listening;
    }
  }
  return listening;
}

static void printFault(const LumoEventData *fault) {
  printf("GPU %u XID %u severity %llu scope %llu pid %llu: %.*s\n", fault->deviceIndex, fault->record.xid,
         fault->record.attributes >> 3 & 7, fault->record.attributes & 7, fault->record.pid,
         LUMO_XID_ADDITIONAL_SIZE, fault->record.additional);
  fflush(stdout);
}

int main(int argc, char **argv) {
  const long wanted = argc > 1 ? strtol(argv[1], NULL, 10) : -1;
  LumoLibrary *library;
  LumoEvent *event;
  LumoReturn status = lumoLibraryInit(&library);
  if (status == LUMO_RETURN_SUCCESS) {
    status = lumoEventCreate(&event);
  }
  if (status != LUMO_RETURN_SUCCESS) {
    fprintf(stderr, "the library cannot start: %s\n", lumoReturnText(status));
    return EXIT_FAILURE;
  }
  printf("listening to %u GPUs\n", listenToAll(library, event));
  fflush(stdout);
  for (long seen = 0; (wanted < 0 || seen < wanted) && status != LUMO_RETURN_UNKNOWN_ERROR;) {
    LumoEventData fault;
    status = lumoEventWait(event, WAIT_MS, &fault);
    if (status == LUMO_RETURN_SUCCESS) {
      printFault(&fault);
      ++seen;
    }
  }
  lumoLibraryShutDown(library);
  return status == LUMO_RETURN_UNKNOWN_ERROR ? EXIT_FAILURE : EXIT_SUCCESS;
}
