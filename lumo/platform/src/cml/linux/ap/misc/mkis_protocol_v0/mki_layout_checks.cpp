#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_device_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_mpc_records.h"
#include "linux/ap/mki_list.h"

// The driver's tables of the list, a device, its memory and its division, transcribed a second time.

namespace kelp::linux_ {

static_assert(sizeof(MkiMkisList) == 328);
FIELD_AT(MkiMkisList, start, 0, 4);
FIELD_AT(MkiMkisList, count, 4, 4);
ROWS_AT(MkiMkisList, entries, 8, 20, 16);
FIELD_AT(MkiMkisListEntry, name, 0, 4);
FIELD_AT(MkiMkisListEntry, version, 4, 4);

CALL_IS(MkiGetDeviceStatusV0, 2, 0, 72);
REQUEST_IS(MkiGetDeviceStatusV0, 0xC0484D05, 72);
FIELD_AT(MkiGetDeviceStatusV0, utilization, 0, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine0, 4, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine1, 8, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine2, 12, 4);
FIELD_AT(MkiGetDeviceStatusV0, engine3, 16, 4);
FIELD_AT(MkiGetDeviceStatusV0, memoryBusy, 20, 4);
FIELD_AT(MkiGetDeviceStatusV0, coreAverage, 40, 4);
CALL_IS(MkiGetDeviceStatusV1, 2, 1, 88);
REQUEST_IS(MkiGetDeviceStatusV1, 0xC0584D05, 88);
FIELD_AT(MkiGetDeviceStatusV1, utilization, 0, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine0, 4, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine1, 8, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine2, 12, 4);
FIELD_AT(MkiGetDeviceStatusV1, engine3, 16, 4);
FIELD_AT(MkiGetDeviceStatusV1, memoryBusy, 20, 4);
FIELD_AT(MkiGetDeviceStatusV1, coreMax, 24, 4);
FIELD_AT(MkiGetDeviceStatusV1, coreAverage, 40, 4);

CALL_IS(MkiGetMgtDevDescV0, 8, 0, 42);
REQUEST_IS(MkiGetMgtDevDescV0, 0x802A4DB2, 42);
FIELD_AT(MkiGetMgtDevDescV0, miscId, 0, 2);
FIELD_AT(MkiGetMgtDevDescV0, value32, 2, 2);
FIELD_AT(MkiGetMgtDevDescV0, value64, 4, 8);
FIELD_AT(MkiGetMgtDevDescV0, devType, 16, 4);
FIELD_AT(MkiGetMgtDevDescV0, flagA, 20, 4);
FIELD_AT(MkiGetMgtDevDescV0, flagB, 24, 4);
FIELD_AT(MkiGetMgtDevDescV0, cardId, 28, 2);
FIELD_AT(MkiGetMgtDevDescV0, renderId, 30, 2);
FIELD_AT(MkiGetMgtDevDescV0, parentMiscId, 32, 2);
FIELD_AT(MkiGetMgtDevDescV0, sbdf, 34, 8);

CALL_IS(MkiResetGpuV0, 29, 0, 4);
REQUEST_IS(MkiResetGpuV0, 0x40044DBB, 4);

CALL_IS(MkiGetProcessGpuUtilV0, 30, 0, 3248);
REQUEST_IS(MkiGetProcessGpuUtilV0, 0x8CB04DBC, 3248);
FIELD_AT(MkiGetProcessGpuUtilV0, phase, 0, 4);
FIELD_AT(MkiGetProcessGpuUtilV0, environmentType, 4, 4);
FIELD_AT(MkiGetProcessGpuUtilV0, lastSeen, 24, 8);
FIELD_AT(MkiGetProcessGpuUtilV0, ready, 32, 4);
FIELD_AT(MkiGetProcessGpuUtilV0, count, 36, 4);
ROWS_AT(MkiGetProcessGpuUtilV0, rows, 48, 80, 40);
FIELD_AT(MkiProcessGpuUtilRow, pid, 0, 4);
FIELD_AT(MkiProcessGpuUtilRow, kind, 4, 4);
FIELD_AT(MkiProcessGpuUtilRow, timestamp, 8, 8);
FIELD_AT(MkiProcessGpuUtilRow, gpu, 16, 4);
FIELD_AT(MkiProcessGpuUtilRow, memory, 20, 4);
FIELD_AT(MkiProcessGpuUtilRow, encoder, 24, 4);
FIELD_AT(MkiProcessGpuUtilRow, decoder, 28, 4);

CALL_IS(MkiGetInfoRomV0, 32, 0, 128);
REQUEST_IS(MkiGetInfoRomV0, 0x80804DAD, 128);
FIELD_AT(MkiGetInfoRomV0, serialNumber, 0, 64);
FIELD_AT(MkiGetInfoRomV0, brand, 64, 64);

CALL_IS(MkiResetDeviceEventMsgsV0, 43, 0, 16);
REQUEST_IS(MkiResetDeviceEventMsgsV0, 0x40104DE1, 16);

CALL_IS(MkiResetGpuHwErrorCountsV0, 44, 0, 8);
REQUEST_IS(MkiResetGpuHwErrorCountsV0, 0x40084DBD, 8);
FIELD_AT(MkiResetGpuHwErrorCountsV0, mask, 0, 8);

CALL_IS(MkiResetDeviceV0, 50, 0, 4);
REQUEST_IS(MkiResetDeviceV0, 0x40044DEA, 4);

CALL_IS(MkiGetDeviceMemUsageV0, 3, 0, 160);
REQUEST_IS(MkiGetDeviceMemUsageV0, 0xC0A04DA6, 160);
FIELD_AT(MkiGetDeviceMemUsageV0, total, 0, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, used, 8, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[0], 16, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[1], 24, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[2], 32, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, region[3], 40, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, systemTotal, 48, 8);
FIELD_AT(MkiGetDeviceMemUsageV0, guestReserved, 56, 8);

CALL_IS(MkiGetProcessLevelMemV0, 4, 0, 14728);
REQUEST_IS(MkiGetProcessLevelMemV0, 0xB9884DA7, 14728);
FIELD_AT(MkiGetProcessLevelMemV0, count, 0, 4);
ROWS_AT(MkiGetProcessLevelMemV0, rows, 8, 80, 184);
CALL_IS(MkiGetProcessLevelMemV1, 4, 1, 15368);
REQUEST_IS(MkiGetProcessLevelMemV1, 0xBC084DA7, 15368);
FIELD_AT(MkiGetProcessLevelMemV1, count, 0, 4);
ROWS_AT(MkiGetProcessLevelMemV1, rows, 8, 80, 192);
CALL_IS(MkiGetProcessLevelMemV2, 4, 2, 8976);
REQUEST_IS(MkiGetProcessLevelMemV2, 0xA3104DA7, 8976);
FIELD_AT(MkiGetProcessLevelMemV2, count, 0, 4);
ROWS_AT(MkiGetProcessLevelMemV2, rows, 16, 80, 112);
FIELD_AT(MkiProcessMemRow<184>, gpuMemory, 0, 8);
FIELD_AT(MkiProcessMemRow<184>, systemMemory, 8, 8);
FIELD_AT(MkiProcessMemRow<184>, kind, 16, 4);
FIELD_AT(MkiProcessMemRow<184>, pid, 20, 4);
FIELD_AT(MkiProcessMemRow<192>, pid, 20, 4);
FIELD_AT(MkiProcessMemRow<112>, pid, 20, 4);

CALL_IS(MkiGetVgpuUtilV0, 33, 0, 8);
REQUEST_IS(MkiGetVgpuUtilV0, 0x80084DD0, 8);
FIELD_AT(MkiGetVgpuUtilV0, vgpuId, 0, 4);
FIELD_AT(MkiGetVgpuUtilV0, utilization, 4, 4);

CALL_IS(MkiGetVgpuMemInfoV0, 34, 0, 20);
REQUEST_IS(MkiGetVgpuMemInfoV0, 0x80144DD1, 20);
FIELD_AT(MkiGetVgpuMemInfoV0, vgpuId, 0, 4);
FIELD_AT(MkiGetVgpuMemInfoV0, total, 4, 8);
FIELD_AT(MkiGetVgpuMemInfoV0, used, 12, 8);

CALL_IS(MkiGetEccRetiredPagesCntV0, 45, 0, 8);
REQUEST_IS(MkiGetEccRetiredPagesCntV0, 0x80084DE2, 8);
FIELD_AT(MkiGetEccRetiredPagesCntV0, singleBit, 0, 4);
FIELD_AT(MkiGetEccRetiredPagesCntV0, doubleBit, 4, 4);

CALL_IS(MkiGetEccRetiredPagesInfoV0, 46, 0, 56);
REQUEST_IS(MkiGetEccRetiredPagesInfoV0, 0x80384DE3, 56);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, count, 0, 8);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, address, 8 + 0, 8);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, timestamp, 8 + 8, 8);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, wantedCause, 24, 4);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, wantedIndex, 28, 4);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, cause, 8 + 28, 4);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, location, 8 + 32, 8);
FIELD_AT(MkiGetEccRetiredPagesInfoV0, errorCount, 8 + 40, 8);

CALL_IS(MkiGetEccRetiredPagesPendingInfoV0, 47, 0, 56);
REQUEST_IS(MkiGetEccRetiredPagesPendingInfoV0, 0x80384DE4, 56);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, count, 0, 8);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, address, 8 + 0, 8);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, timestamp, 8 + 8, 8);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, wantedIndex, 24, 4);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, cause, 8 + 20, 4);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, location, 8 + 24, 8);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, errorCount, 8 + 32, 8);
FIELD_AT(MkiGetEccRetiredPagesPendingInfoV0, lastErrorTime, 8 + 40, 8);

CALL_IS(MkiGetEccModeV0, 48, 0, 5);
REQUEST_IS(MkiGetEccModeV0, 0x80054DE5, 5);
FIELD_AT(MkiGetEccModeV0, current, 0, 4);
FIELD_AT(MkiGetEccModeV0, pending, 4, 1);

CALL_IS(MkiSetEccModeV0, 49, 0, 4);
REQUEST_IS(MkiSetEccModeV0, 0x40044DE6, 4);
FIELD_AT(MkiSetEccModeV0, mode, 0, 4);

CALL_IS(MkiGetMgtMpcProfileListV0, 9, 0, 1604);
REQUEST_IS(MkiGetMgtMpcProfileListV0, 0x86444DB3, 1604);
FIELD_AT(MkiGetMgtMpcProfileListV0, count, 0, 4);
ROWS_AT(MkiGetMgtMpcProfileListV0, rows, 4, 32, 50);
FIELD_AT(MkiMpcProfileRow, id, 0, 2);
FIELD_AT(MkiMpcProfileRow, name, 2, 32);
FIELD_AT(MkiMpcProfileRow, coreCount, 34, 2);
FIELD_AT(MkiMpcProfileRow, memory, 36, 8);

CALL_IS(MkiGetMgtMpcConfListV0, 10, 0, 3268);
REQUEST_IS(MkiGetMgtMpcConfListV0, 0x8CC44DB4, 3268);
FIELD_AT(MkiGetMgtMpcConfListV0, count, 0, 4);
ROWS_AT(MkiGetMgtMpcConfListV0, rows, 4, 32, 102);
FIELD_AT(MkiMpcConfigurationRow, id, 0, 2);
FIELD_AT(MkiMpcConfigurationRow, name, 2, 32);
FIELD_AT(MkiMpcConfigurationRow, profileCount, 34, 4);
ROWS_AT(MkiMpcConfigurationRow, profileIds, 38, 32, 2);

CALL_IS(MkiGetMgtMpcInstanceListV0, 11, 0, 70);
REQUEST_IS(MkiGetMgtMpcInstanceListV0, 0x80464DB5, 70);
FIELD_AT(MkiGetMgtMpcInstanceListV0, count, 0, 2);
ROWS_AT(MkiGetMgtMpcInstanceListV0, rows, 2, 17, 4);
FIELD_AT(MkiMpcInstanceRow, miscId, 0, 2);
FIELD_AT(MkiMpcInstanceRow, instanceId, 2, 2);

CALL_IS(MkiSetMgtMpcConfV0, 12, 0, 2);
REQUEST_IS(MkiSetMgtMpcConfV0, 0x40024DB6, 2);
FIELD_AT(MkiSetMgtMpcConfV0, configId, 0, 2);

CALL_IS(MkiGetMgtMpcParentV0, 13, 0, 2);
REQUEST_IS(MkiGetMgtMpcParentV0, 0x80024DB7, 2);
FIELD_AT(MkiGetMgtMpcParentV0, parentMiscId, 0, 2);

CALL_IS(MkiGetMgtMpcProfileV0, 14, 0, 50);
REQUEST_IS(MkiGetMgtMpcProfileV0, 0x80324DB8, 50);
FIELD_AT(MkiGetMgtMpcProfileV0, profile, 0, 50);

CALL_IS(MkiSetMgtMpcSwitchV0, 15, 0, 1);
REQUEST_IS(MkiSetMgtMpcSwitchV0, 0x40014DB9, 1);
FIELD_AT(MkiSetMgtMpcSwitchV0, mode, 0, 1);

CALL_IS(MkiGetMgtMpcConfV0, 16, 0, 2);
REQUEST_IS(MkiGetMgtMpcConfV0, 0x80024DBA, 2);
FIELD_AT(MkiGetMgtMpcConfV0, id, 0, 2);

}  // namespace kelp::linux_
