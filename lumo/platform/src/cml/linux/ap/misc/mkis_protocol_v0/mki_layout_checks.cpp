#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_records.h"

// The driver's layout tables, transcribed a second time: a slip in a record does not compile.

namespace kelp::linux_ {

FIELD_AT(MkiMkisList, start, 0, 4);
FIELD_AT(MkiMkisList, count, 4, 4);
FIELD_AT(MkiMkisList, entries, 8, 20 * 16);
FIELD_AT(MkiMkisListEntry, name, 0, 4);
FIELD_AT(MkiMkisListEntry, version, 4, 4);

static_assert(sizeof(MkiMkisList) == 328 && sizeof(MkiMkisListEntry) == 16);

FIELD_AT(MkiGetDeviceStatusV0, utilization, 0, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine0, 4, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine1, 8, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine2, 12, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine3, 16, 4);
FIELD_AT(MkiGetDeviceStatusV0, memoryBusy, 20, 4);
FIELD_AT(MkiGetDeviceStatusV0, coreAverage, 40, 4);
static_assert(sizeof(MkiGetDeviceStatusV0) == 72);
FIELD_AT(MkiGetDeviceStatusV1, utilization, 0, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine0, 4, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine1, 8, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine2, 12, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine3, 16, 4);
FIELD_AT(MkiGetDeviceStatusV1, memoryBusy, 20, 4);
FIELD_AT(MkiGetDeviceStatusV1, coreMax, 24, 4);
FIELD_AT(MkiGetDeviceStatusV1, coreAverage, 40, 4);
static_assert(sizeof(MkiGetDeviceStatusV1) == 88);

FIELD_AT(MkiGetDeviceMemUsageV0, total, 0, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, used, 8, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[0], 16, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[1], 24, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[2], 32, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[3], 40, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, systemTotal, 48, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, guestReserved, 56, 8);
static_assert(sizeof(MkiGetDeviceMemUsageV0) == 160);

FIELD_AT(MkiGetProcessLevelMemV0, count, 0, 4);
FIELD_AT(MkiGetProcessLevelMemV0, rows, 8, 80 * 184);
FIELD_AT(MkiGetProcessLevelMemV1, count, 0, 4);
FIELD_AT(MkiGetProcessLevelMemV1, rows, 8, 80 * 192);
FIELD_AT(MkiGetProcessLevelMemV2, count, 0, 4);
FIELD_AT(MkiGetProcessLevelMemV2, rows, 16, 80 * 112);
static_assert(sizeof(MkiGetProcessLevelMemV0) == 14728 && sizeof(MkiGetProcessLevelMemV1) == 15368 &&
              sizeof(MkiGetProcessLevelMemV2) == 8976);
FIELD_AT(MkiProcessMemRow<184>, gpuMemory, 0, 8);
FIELD_AT(MkiProcessMemRow<184>, systemMemory, 8, 8);
FIELD_AT(MkiProcessMemRow<184>, kind, 16, 4);
FIELD_AT(MkiProcessMemRow<184>, pid, 20, 4);
FIELD_AT(MkiProcessMemRow<192>, pid, 20, 4);
FIELD_AT(MkiProcessMemRow<112>, pid, 20, 4);

FIELD_AT(MkiGetPciConfigSpaceV0, configSpace, 0, 264);
static_assert(sizeof(MkiGetPciConfigSpaceV0) == 264);

}  // namespace kelp::linux_
