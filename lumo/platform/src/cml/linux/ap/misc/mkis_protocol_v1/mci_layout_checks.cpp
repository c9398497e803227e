#include <cstddef>

#include "linux/ap/misc/mki_probe.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_list_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_mpc_records.h"

// The driver's layout tables, transcribed a second time: a slip in a record does not compile.

namespace kelp::linux_ {

#define AT(Record, field, offset, width) \
  static_assert(offsetof(Record, field) == (offset) && sizeof(Record::field) == (width))

static_assert(sizeof(MkiQueryProbeV1) == 12 && sizeof(MkiQueryProbeV0) == 16);
AT(MkiQueryProbeV1, currentMajor, 0, 2);
AT(MkiQueryProbeV1, currentMinor, 2, 2);
AT(MkiQueryProbeV1, oldMajor, 4, 2);
AT(MkiQueryProbeV1, oldMinor, 6, 2);
AT(MkiQueryProbeV0, major, 0, 2);
AT(MkiQueryProbeV0, minor, 2, 2);
AT(MkiQueryProbeV0, interfaceCount, 4, 4);

static_assert(sizeof(MciHeader) == 24 && sizeof(MciBody) == 16);
AT(MciHeader, major, 0, 2);
AT(MciHeader, minor, 2, 2);
AT(MciHeader, status, 4, 4);
AT(MciHeader, pduType, 8, 4);
AT(MciHeader, bodySize, 12, 4);
AT(MciHeader, reserved, 16, 8);
using AnyCall = MciCall<MciGetPstateV0>;
static_assert(offsetof(AnyCall, body) == 24 && offsetof(AnyCall, payload) == 40);
AT(MciBody, intfName, 24 - 24, 2);
AT(MciBody, intfVersion, 26 - 24, 1);
AT(MciBody, payloadSize, 28 - 24, 4);

static_assert(sizeof(MkisScanPduHeaderPv1) == 48);
AT(MkisScanPduHeaderPv1, listEntryCount, 24, 2);
AT(MkisScanPduHeaderPv1, deviceEventTypes, 26, 2);
AT(MkisScanPduHeaderPv1, miscNodes, 28, 2);
AT(MkisScanPduHeaderPv1, renderNodes, 30, 2);
static_assert(sizeof(MciListHead) == 36 && sizeof(MciListEntry) == 12);
static_assert(sizeof(MciListHead) + kMciListMinEntries * sizeof(MciListEntry) == 1236);
AT(MciListHead, listEntryCount, 24, 2);
AT(MciListEntry, name, 0, 2);
AT(MciListEntry, maxVersion, 2, 1);
AT(MciListEntry, minVersion, 3, 1);

AT(MciGetDeviceStatusV2, utilization, 0, 4);
AT(MciGetDeviceStatusV2, engine0, 4, 4);
AT(MciGetDeviceStatusV2, engine1, 8, 4);
AT(MciGetDeviceStatusV2, engine2, 12, 4);
AT(MciGetDeviceStatusV2, engine3, 16, 4);
AT(MciGetDeviceStatusV2, memoryBusy, 20, 4);
AT(MciGetDeviceStatusV2, coreAverage, 40, 4);
AT(MciGetDeviceStatusV3, utilization, 0, 4);
AT(MciGetDeviceStatusV3, engine0, 4, 4);
AT(MciGetDeviceStatusV3, engine1, 8, 4);
AT(MciGetDeviceStatusV3, engine2, 12, 4);
AT(MciGetDeviceStatusV3, engine3, 16, 4);
AT(MciGetDeviceStatusV3, memoryBusy, 20, 4);
AT(MciGetDeviceStatusV3, coreMax, 24, 4);
AT(MciGetDeviceStatusV3, coreAverage, 40, 4);

AT(MciGetDeviceMemUsageV1, total, 0, 8);
AT(MciGetDeviceMemUsageV1, used, 8, 8);
AT(MciGetDeviceMemUsageV1, region[0], 16, 8);
AT(MciGetDeviceMemUsageV1, region[1], 24, 8);
AT(MciGetDeviceMemUsageV1, region[2], 32, 8);

AT(MciGetProcessLevelMemV3, count, 0, 4);
AT(MciGetProcessLevelMemV3, rows, 8, 80 * 92);
AT(MciProcessMemRow, gpuMemory, 0, 8);
AT(MciProcessMemRow, systemMemory, 8, 8);
AT(MciProcessMemRow, kind, 16, 4);
AT(MciProcessMemRow, pid, 20, 4);

AT(MciGetPciConfigSpaceV1, configSpace, 0, 264);

AT(MciGetMgtDevDescV1, miscId, 0, 2);
AT(MciGetMgtDevDescV1, value32, 2, 2);
AT(MciGetMgtDevDescV1, value64, 4, 8);
AT(MciGetMgtDevDescV1, devType, 16, 4);
AT(MciGetMgtDevDescV1, flagA, 20, 4);
AT(MciGetMgtDevDescV1, flagB, 24, 4);
AT(MciGetMgtDevDescV1, cardId, 28, 2);
AT(MciGetMgtDevDescV1, renderId, 30, 2);
AT(MciGetMgtDevDescV1, parentMiscId, 32, 2);
AT(MciGetMgtDevDescV1, sbdf, 34, 8);
AT(MciGetMgtDevDescV1, ionId, 42, 2);
AT(MciGetMgtDevDescV2, miscId, 0, 2);
AT(MciGetMgtDevDescV2, value32, 2, 2);
AT(MciGetMgtDevDescV2, value64, 4, 8);
AT(MciGetMgtDevDescV2, devType, 16, 4);
AT(MciGetMgtDevDescV2, flagA, 20, 4);
AT(MciGetMgtDevDescV2, flagB, 24, 4);
AT(MciGetMgtDevDescV2, cardId, 28, 2);
AT(MciGetMgtDevDescV2, renderId, 30, 2);
AT(MciGetMgtDevDescV2, parentMiscId, 32, 2);
AT(MciGetMgtDevDescV2, sbdf, 34, 8);
AT(MciGetMgtDevDescV2, ionId, 42, 2);

AT(MciGetMgtMpcProfileListV1, count, 0, 4);
AT(MciGetMgtMpcProfileListV1, rows, 4, 32 * 60);
AT(MciMpcProfileRow, id, 0, 2);
AT(MciMpcProfileRow, name, 2, 32);
AT(MciMpcProfileRow, coreCount, 34, 2);
AT(MciMpcProfileRow, memory, 36, 8);

AT(MciGetMgtMpcConfListV1, count, 0, 4);
AT(MciGetMgtMpcConfListV1, rows, 4, 32 * 118);
AT(MciMpcConfigurationRow, id, 0, 2);
AT(MciMpcConfigurationRow, name, 2, 32);
AT(MciMpcConfigurationRow, profileCount, 34, 4);
AT(MciMpcConfigurationRow, profileIds, 38, 64);

AT(MciGetMgtMpcInstanceListV1, count, 0, 2);
AT(MciGetMgtMpcInstanceListV1, rows, 2, 17 * 4);
AT(MciMpcInstanceRow, miscId, 0, 2);
AT(MciMpcInstanceRow, instanceId, 2, 2);

AT(MciGetMgtMpcParentV1, parentMiscId, 0, 2);
AT(MciGetMgtMpcProfileV1, profile.id, 0, 2);
AT(MciGetMgtMpcProfileV1, profile.name, 2, 32);
AT(MciGetMgtMpcProfileV1, profile.coreCount, 34, 2);
AT(MciGetMgtMpcProfileV1, profile.memory, 36, 8);

AT(MciGetInfoRomV1, serialNumber, 0, 64);
AT(MciGetInfoRomV1, brand, 64, 64);

AT(MciGetEccModeV1, current, 0, 4);
AT(MciGetEccModeV1, pending, 4, 1);

AT(MciGetSmcFwVerV1, versions, 0, 24);

AT(MciGetTemperV1, sensorId, 0, 4);
AT(MciGetTemperV1, temperature, 4, 4);

AT(MciGetDdrConfInfoV1, maxClock, 0, 8);
AT(MciGetDdrConfInfoV1, typeVendor, 9, 1);
AT(MciGetDdrConfInfoV1, channels, 14, 2);

AT(MciGetEfuseDataV1, startBit, 0, 4);
AT(MciGetEfuseDataV1, bitCount, 4, 4);
AT(MciGetEfuseDataV1, words, 8, 128);

AT(MciGetPstateV0, state, 0, 4);
AT(MciGetDevNameV0, name, 0, 48);

#undef AT

}  // namespace kelp::linux_
