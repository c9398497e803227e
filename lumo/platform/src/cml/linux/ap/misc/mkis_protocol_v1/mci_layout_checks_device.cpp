#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_board_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"

// The driver's tables of a device, its GPU and its board, transcribed a second time.

namespace kelp::linux_ {

CALL_IS(MciGetMgtDevDescV1, 8, 1, 60);
FIELD_AT(MciGetMgtDevDescV1, miscId, 0, 2);
FIELD_AT(MciGetMgtDevDescV1, value32, 2, 2);
FIELD_AT(MciGetMgtDevDescV1, value64, 4, 8);
FIELD_AT(MciGetMgtDevDescV1, devType, 16, 4);
FIELD_AT(MciGetMgtDevDescV1, flagA, 20, 4);
FIELD_AT(MciGetMgtDevDescV1, flagB, 24, 4);
FIELD_AT(MciGetMgtDevDescV1, cardId, 28, 2);
FIELD_AT(MciGetMgtDevDescV1, renderId, 30, 2);
FIELD_AT(MciGetMgtDevDescV1, parentMiscId, 32, 2);
FIELD_AT(MciGetMgtDevDescV1, sbdf, 34, 8);
FIELD_AT(MciGetMgtDevDescV1, ionId, 42, 2);
CALL_IS(MciGetMgtDevDescV2, 8, 2, 60);
FIELD_AT(MciGetMgtDevDescV2, miscId, 0, 2);
FIELD_AT(MciGetMgtDevDescV2, value32, 2, 2);
FIELD_AT(MciGetMgtDevDescV2, value64, 4, 8);
FIELD_AT(MciGetMgtDevDescV2, devType, 16, 4);
FIELD_AT(MciGetMgtDevDescV2, flagA, 20, 4);
FIELD_AT(MciGetMgtDevDescV2, flagB, 24, 4);
FIELD_AT(MciGetMgtDevDescV2, cardId, 28, 2);
FIELD_AT(MciGetMgtDevDescV2, renderId, 30, 2);
FIELD_AT(MciGetMgtDevDescV2, parentMiscId, 32, 2);
FIELD_AT(MciGetMgtDevDescV2, sbdf, 34, 8);
FIELD_AT(MciGetMgtDevDescV2, ionId, 42, 2);

CALL_IS(MciGetInfoRomV1, 32, 1, 256);
FIELD_AT(MciGetInfoRomV1, serialNumber, 0, 64);
FIELD_AT(MciGetInfoRomV1, brand, 64, 64);

CALL_IS(MciResetDeviceEventMsgsV1, 43, 1, 16);

CALL_IS(MciResetDeviceV1, 50, 1, 16);

CALL_IS(MciGetSmcFwVerV1, 52, 1, 40);
FIELD_AT(MciGetSmcFwVerV1, versions[0], 0, 4);
FIELD_AT(MciGetSmcFwVerV1, versions[1], 4, 4);
FIELD_AT(MciGetSmcFwVerV1, versions[2], 8, 4);
FIELD_AT(MciGetSmcFwVerV1, versions[3], 12, 4);
FIELD_AT(MciGetSmcFwVerV1, versions[4], 16, 4);
FIELD_AT(MciGetSmcFwVerV1, versions[5], 20, 4);

CALL_IS(MciGetEfuseDataV1, 62, 1, 152);
FIELD_AT(MciGetEfuseDataV1, startBit, 0, 4);
FIELD_AT(MciGetEfuseDataV1, bitCount, 4, 4);
FIELD_AT(MciGetEfuseDataV1, words, 8, 128);

CALL_IS(MciGetDevNameV0, 71, 0, 64);
FIELD_AT(MciGetDevNameV0, name, 0, 48);

CALL_IS(MciGetDeviceStatusV2, 2, 2, 92);
FIELD_AT(MciGetDeviceStatusV2, utilization, 0, 4);
FIELD_AT(MciGetDeviceStatusV2, engine0, 4, 4);
FIELD_AT(MciGetDeviceStatusV2, engine1, 8, 4);
FIELD_AT(MciGetDeviceStatusV2, engine2, 12, 4);
FIELD_AT(MciGetDeviceStatusV2, engine3, 16, 4);
FIELD_AT(MciGetDeviceStatusV2, memoryBusy, 20, 4);
FIELD_AT(MciGetDeviceStatusV2, coreAverage, 40, 4);
CALL_IS(MciGetDeviceStatusV3, 2, 3, 92);
FIELD_AT(MciGetDeviceStatusV3, utilization, 0, 4);
FIELD_AT(MciGetDeviceStatusV3, engine0, 4, 4);
FIELD_AT(MciGetDeviceStatusV3, engine1, 8, 4);
FIELD_AT(MciGetDeviceStatusV3, engine2, 12, 4);
FIELD_AT(MciGetDeviceStatusV3, engine3, 16, 4);
FIELD_AT(MciGetDeviceStatusV3, memoryBusy, 20, 4);
FIELD_AT(MciGetDeviceStatusV3, coreMax, 24, 4);
FIELD_AT(MciGetDeviceStatusV3, coreAverage, 40, 4);

CALL_IS(MciResetGpuV1, 29, 1, 20);

CALL_IS(MciGetProcessGpuUtilV1, 30, 1, 4856);
FIELD_AT(MciGetProcessGpuUtilV1, phase, 0, 4);
FIELD_AT(MciGetProcessGpuUtilV1, environmentType, 4, 4);
FIELD_AT(MciGetProcessGpuUtilV1, lastSeen, 24, 8);
FIELD_AT(MciGetProcessGpuUtilV1, ready, 32, 4);
FIELD_AT(MciGetProcessGpuUtilV1, count, 36, 4);
ROWS_AT(MciGetProcessGpuUtilV1, rows, 40, 80, 60);
CALL_IS(MciGetProcessGpuUtilV2, 30, 2, 4856);
FIELD_AT(MciGetProcessGpuUtilV2, phase, 0, 4);
FIELD_AT(MciGetProcessGpuUtilV2, environmentType, 4, 4);
FIELD_AT(MciGetProcessGpuUtilV2, lastSeen, 24, 8);
FIELD_AT(MciGetProcessGpuUtilV2, ready, 32, 4);
FIELD_AT(MciGetProcessGpuUtilV2, count, 36, 4);
ROWS_AT(MciGetProcessGpuUtilV2, rows, 40, 80, 60);
FIELD_AT(MciProcessGpuUtilRow, pid, 0, 4);
FIELD_AT(MciProcessGpuUtilRow, kind, 4, 4);
FIELD_AT(MciProcessGpuUtilRow, timestamp, 8, 8);
FIELD_AT(MciProcessGpuUtilRow, gpu, 16, 4);
FIELD_AT(MciProcessGpuUtilRow, memory, 20, 4);
FIELD_AT(MciProcessGpuUtilRow, encoder, 24, 4);
FIELD_AT(MciProcessGpuUtilRow, decoder, 28, 4);

CALL_IS(MciResetGpuHwErrorCountsV1, 44, 1, 24);
FIELD_AT(MciResetGpuHwErrorCountsV1, mask, 16, 8);

CALL_IS(MciGetClockV1, 51, 1, 28);
FIELD_AT(MciGetClockV1, clockId, 0, 4);
FIELD_AT(MciGetClockV1, frequency, 4, 8);

CALL_IS(MciGetTemperV1, 56, 1, 24);
FIELD_AT(MciGetTemperV1, sensorId, 0, 4);
FIELD_AT(MciGetTemperV1, temperature, 4, 4);

CALL_IS(MciGetGpuConfInfoV1, 60, 1, 12);
FIELD_AT(MciGetGpuConfInfoV1, coreCount, 0, 1);
FIELD_AT(MciGetGpuConfInfoV1, clusterCount, 1, 1);
FIELD_AT(MciGetGpuConfInfoV1, unitsPerCore, 2, 1);
FIELD_AT(MciGetGpuConfInfoV1, maxClock, 3, 2);

CALL_IS(MciGetGpuConfInfoV2, 60, 2, 44);
FIELD_AT(MciGetGpuConfInfoV2, unitsPerCore, 2, 16);

CALL_IS(MciGetTemperLimitInfoV1, 66, 1, 32);
FIELD_AT(MciGetTemperLimitInfoV1, slowdown, 8, 4);
FIELD_AT(MciGetTemperLimitInfoV1, shutdown, 12, 4);

CALL_IS(MciGetPstateV0, 67, 0, 20);
FIELD_AT(MciGetPstateV0, state, 0, 4);

CALL_IS(MciSetPstateV0, 68, 0, 20);
FIELD_AT(MciSetPstateV0, state, 0, 4);

CALL_IS(MciQueryThermalSlowdownStatisticsV0, 73, 0, 24);
FIELD_AT(MciQueryThermalSlowdownStatisticsV0, count, 0, 4);
FIELD_AT(MciQueryThermalSlowdownStatisticsV0, totalTime, 4, 4);

CALL_IS(MciGetFanCountV1, 53, 1, 20);
FIELD_AT(MciGetFanCountV1, count, 0, 4);

CALL_IS(MciGetFanSpeedV1, 54, 1, 28);
FIELD_AT(MciGetFanSpeedV1, speed, 8, 4);
FIELD_AT(MciGetFanSpeedV1, selector, 16, 8);

CALL_IS(MciGetPowerV1, 55, 1, 24);
FIELD_AT(MciGetPowerV1, domain, 0, 4);
FIELD_AT(MciGetPowerV1, power, 4, 4);

CALL_IS(MciGetDispConfInfoV1, 61, 1, 154);
FIELD_AT(MciGetDispConfInfoV1, count, 0, 2);
ROWS_AT(MciGetDispConfInfoV1, rows, 2, 8, 17);
FIELD_AT(MciDisplayRow, type, 0, 1);
FIELD_AT(MciDisplayRow, hRes, 1, 4);
FIELD_AT(MciDisplayRow, vRes, 5, 4);
FIELD_AT(MciDisplayRow, pixelClock, 9, 4);

CALL_IS(MciGetGpuVoltageV1, 65, 1, 24);
FIELD_AT(MciGetGpuVoltageV1, rail, 0, 4);
FIELD_AT(MciGetGpuVoltageV1, voltage, 4, 4);

CALL_IS(MciQueryPowerLimitV0, 72, 0, 24);
FIELD_AT(MciQueryPowerLimitV0, kind, 0, 4);
FIELD_AT(MciQueryPowerLimitV0, limit, 4, 4);

CALL_IS(MciSetPowerLimitV0, 76, 0, 20);
FIELD_AT(MciSetPowerLimitV0, limit, 0, 4);

CALL_IS(MciSetPowerLimitV1, 76, 1, 20);
FIELD_AT(MciSetPowerLimitV1, limit, 0, 4);
FIELD_AT(MciSetPowerLimitV1, persistent, 4, 4);

}  // namespace kelp::linux_
