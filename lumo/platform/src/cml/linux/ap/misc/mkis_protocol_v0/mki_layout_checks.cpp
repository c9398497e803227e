#include <cstddef>

#include "linux/ap/misc/mkis_protocol_v0/mki_records.h"

// The driver's layout tables, transcribed a second time: a slip in a record does not compile.

namespace kelp::linux_ {

#define AT(Record, field, offset, width) \
  static_assert(offsetof(Record, field) == (offset) && sizeof(Record::field) == (width))

AT(MkiMkisList, start, 0, 4);
AT(MkiMkisList, count, 4, 4);
AT(MkiMkisList, entries, 8, 20 * 16);
AT(MkiMkisListEntry, name, 0, 4);
AT(MkiMkisListEntry, version, 4, 4);

AT(MkiGetDeviceStatusV0, utilization, 0, 4);
AT(MkiGetDeviceStatusV0, engine3, 16, 4);
AT(MkiGetDeviceStatusV0, memoryBusy, 20, 4);
AT(MkiGetDeviceStatusV0, coreAverage, 40, 4);
AT(MkiGetDeviceStatusV1, engine3, 16, 4);
AT(MkiGetDeviceStatusV1, coreMax, 24, 4);
AT(MkiGetDeviceStatusV1, coreAverage, 40, 4);

AT(MkiGetDeviceMemUsageV0, total, 0, 8);
AT(MkiGetDeviceMemUsageV0, used, 8, 8);
AT(MkiGetDeviceMemUsageV0, region[0], 16, 8);
AT(MkiGetDeviceMemUsageV0, region[3], 40, 8);
AT(MkiGetDeviceMemUsageV0, systemTotal, 48, 8);
AT(MkiGetDeviceMemUsageV0, guestReserved, 56, 8);

AT(MkiGetProcessLevelMemV0, rows, 8, 80 * 184);
AT(MkiGetProcessLevelMemV1, rows, 8, 80 * 192);
AT(MkiGetProcessLevelMemV2, rows, 16, 80 * 112);
AT(MkiProcessMemRow<184>, gpuMemory, 0, 8);
AT(MkiProcessMemRow<184>, systemMemory, 8, 8);
AT(MkiProcessMemRow<184>, kind, 16, 4);
AT(MkiProcessMemRow<184>, pid, 20, 4);

AT(MkiGetPciConfigSpaceV0, configSpace, 0, 264);

#undef AT

}  // namespace kelp::linux_
