#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_ecc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_memory_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_mpc_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_vgpu_records.h"

// The driver's tables of memory, error correction, instances and vGPUs, transcribed a second time.

namespace kelp::linux_ {

CALL_IS(MciGetDeviceMemUsageV1, 3, 1, 72);
FIELD_AT(MciGetDeviceMemUsageV1, total, 0, 8);
FIELD_AT(MciGetDeviceMemUsageV1, used, 8, 8);
FIELD_AT(MciGetDeviceMemUsageV1, region[0], 16, 8);
FIELD_AT(MciGetDeviceMemUsageV1, region[1], 24, 8);
FIELD_AT(MciGetDeviceMemUsageV1, region[2], 32, 8);

CALL_IS(MciGetProcessLevelMemV3, 4, 3, 7384);
FIELD_AT(MciGetProcessLevelMemV3, count, 0, 4);
ROWS_AT(MciGetProcessLevelMemV3, rows, 8, 80, 92);
FIELD_AT(MciProcessMemRow, gpuMemory, 0, 8);
FIELD_AT(MciProcessMemRow, systemMemory, 8, 8);
FIELD_AT(MciProcessMemRow, kind, 16, 4);
FIELD_AT(MciProcessMemRow, pid, 20, 4);

CALL_IS(MciGetDdrConfInfoV1, 57, 1, 24);
FIELD_AT(MciGetDdrConfInfoV1, maxClock, 0, 8);
FIELD_AT(MciGetDdrConfInfoV1, typeVendor, 9, 1);
FIELD_AT(MciGetDdrConfInfoV1, channels, 14, 2);

CALL_IS(MciGetMemTemperV1, 63, 1, 212);
FIELD_AT(MciGetMemTemperV1, temperature, 0, 4);
FIELD_AT(MciGetMemTemperV1, channelMask, 8, 8);

CALL_IS(MciGetMemTemperV2, 63, 2, 20);
FIELD_AT(MciGetMemTemperV2, temperature, 0, 4);

CALL_IS(MciGetMemEdcV1, 64, 1, 404);
FIELD_AT(MciGetMemEdcV1, channelCount, 0, 4);
ROWS_AT(MciGetMemEdcV1, rows, 4, 24, 16);
FIELD_AT(MciMemEdcRow, readErrors, 0, 4);
FIELD_AT(MciMemEdcRow, writeErrors, 4, 4);
FIELD_AT(MciMemEdcRow, readRetries, 8, 4);
FIELD_AT(MciMemEdcRow, writeRetries, 12, 4);

CALL_IS(MciGetMemEdcV2, 64, 2, 32);
FIELD_AT(MciGetMemEdcV2, total.readErrors, 0, 4);
FIELD_AT(MciGetMemEdcV2, total.writeErrors, 4, 4);
FIELD_AT(MciGetMemEdcV2, total.readRetries, 8, 4);
FIELD_AT(MciGetMemEdcV2, total.writeRetries, 12, 4);

CALL_IS(MciGetEccRetiredPagesCntV1, 45, 1, 24);
FIELD_AT(MciGetEccRetiredPagesCntV1, singleBit, 0, 4);
FIELD_AT(MciGetEccRetiredPagesCntV1, doubleBit, 4, 4);

CALL_IS(MciGetEccRetiredPagesInfoV1, 46, 1, 56);
FIELD_AT(MciGetEccRetiredPagesInfoV1, wantedCause, 24, 4);
FIELD_AT(MciGetEccRetiredPagesInfoV1, wantedIndex, 28, 4);
FIELD_AT(MciGetEccRetiredPagesInfoV1, count, 0, 8);
FIELD_AT(MciGetEccRetiredPagesInfoV1, address, 8, 8);
FIELD_AT(MciGetEccRetiredPagesInfoV1, timestamp, 16, 8);
FIELD_AT(MciGetEccRetiredPagesInfoV1, cause, 36, 4);
FIELD_AT(MciGetEccRetiredPagesInfoV1, location, 40, 8);
FIELD_AT(MciGetEccRetiredPagesInfoV1, errorCount, 48, 8);

CALL_IS(MciGetEccRetiredPagesPendingInfoV1, 47, 1, 56);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, wantedIndex, 24, 4);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, count, 0, 8);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, address, 8, 8);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, timestamp, 16, 8);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, cause, 28, 4);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, location, 32, 8);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, errorCount, 40, 8);
FIELD_AT(MciGetEccRetiredPagesPendingInfoV1, lastErrorTime, 48, 8);

CALL_IS(MciGetEccModeV1, 48, 1, 21);
FIELD_AT(MciGetEccModeV1, current, 0, 4);
FIELD_AT(MciGetEccModeV1, pending, 4, 1);

CALL_IS(MciSetEccModeV1, 49, 1, 20);
FIELD_AT(MciSetEccModeV1, mode, 0, 4);

CALL_IS(MciGetEccErrorsV0, 69, 0, 36);
FIELD_AT(MciGetEccErrorsV0, errorType, 0, 4);
FIELD_AT(MciGetEccErrorsV0, counterType, 4, 4);
FIELD_AT(MciGetEccErrorsV0, location, 8, 4);
FIELD_AT(MciGetEccErrorsV0, value, 12, 8);

CALL_IS(MciClearEccErrorsV0, 70, 0, 20);
FIELD_AT(MciClearEccErrorsV0, kind, 0, 4);

CALL_IS(MciGetMgtMpcProfileListV1, 9, 1, 1940);
FIELD_AT(MciGetMgtMpcProfileListV1, count, 0, 4);
ROWS_AT(MciGetMgtMpcProfileListV1, rows, 4, 32, 60);
FIELD_AT(MciMpcProfileRow, id, 0, 2);
FIELD_AT(MciMpcProfileRow, name, 2, 32);
FIELD_AT(MciMpcProfileRow, coreCount, 34, 2);
FIELD_AT(MciMpcProfileRow, memory, 36, 8);

CALL_IS(MciGetMgtMpcConfListV1, 10, 1, 3796);
FIELD_AT(MciGetMgtMpcConfListV1, count, 0, 4);
ROWS_AT(MciGetMgtMpcConfListV1, rows, 4, 32, 118);
FIELD_AT(MciMpcConfigurationRow, id, 0, 2);
FIELD_AT(MciMpcConfigurationRow, name, 2, 32);
FIELD_AT(MciMpcConfigurationRow, profileCount, 34, 4);
FIELD_AT(MciMpcConfigurationRow, profileIds, 38, 64);

CALL_IS(MciGetMgtMpcInstanceListV1, 11, 1, 86);
FIELD_AT(MciGetMgtMpcInstanceListV1, count, 0, 2);
ROWS_AT(MciGetMgtMpcInstanceListV1, rows, 2, 17, 4);
FIELD_AT(MciMpcInstanceRow, miscId, 0, 2);
FIELD_AT(MciMpcInstanceRow, instanceId, 2, 2);

CALL_IS(MciSetMgtMpcConfV1, 12, 1, 18);
FIELD_AT(MciSetMgtMpcConfV1, configId, 0, 2);

CALL_IS(MciGetMgtMpcParentV1, 13, 1, 18);
FIELD_AT(MciGetMgtMpcParentV1, parentMiscId, 0, 2);

CALL_IS(MciGetMgtMpcProfileV1, 14, 1, 60);
FIELD_AT(MciGetMgtMpcProfileV1, profile.id, 0, 2);
FIELD_AT(MciGetMgtMpcProfileV1, profile.name, 2, 32);
FIELD_AT(MciGetMgtMpcProfileV1, profile.coreCount, 34, 2);
FIELD_AT(MciGetMgtMpcProfileV1, profile.memory, 36, 8);

CALL_IS(MciSetMgtMpcSwitchV1, 15, 1, 17);
FIELD_AT(MciSetMgtMpcSwitchV1, mode, 0, 1);

CALL_IS(MciGetMgtMpcConfV1, 16, 1, 118);
FIELD_AT(MciGetMgtMpcConfV1, id, 0, 2);

CALL_IS(MciGetVgpuUtilV1, 33, 1, 24);
FIELD_AT(MciGetVgpuUtilV1, vgpuId, 0, 4);
FIELD_AT(MciGetVgpuUtilV1, utilization, 4, 4);

CALL_IS(MciGetVgpuMemInfoV1, 34, 1, 36);
FIELD_AT(MciGetVgpuMemInfoV1, vgpuId, 0, 4);
FIELD_AT(MciGetVgpuMemInfoV1, total, 4, 8);
FIELD_AT(MciGetVgpuMemInfoV1, used, 12, 8);

CALL_IS(MciMkisVgpuOverCommitInfoV0, 75, 0, 44);
FIELD_AT(MciMkisVgpuOverCommitInfoV0, vgpuId, 0, 4);
FIELD_AT(MciMkisVgpuOverCommitInfoV0, enabled, 4, 4);
FIELD_AT(MciMkisVgpuOverCommitInfoV0, systemMemory, 8, 4);

}  // namespace kelp::linux_
