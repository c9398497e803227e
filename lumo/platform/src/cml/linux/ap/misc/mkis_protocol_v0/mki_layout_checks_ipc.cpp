#include "linux/ap/misc/layout_check.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_board_records.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_sensor_records.h"
#include "linux/ap/misc/mkis_protocol_v0/shared_buffer.h"

// The driver's tables of the commands, the shared buffer and the board's data, transcribed a second time.

namespace kelp::linux_ {

static_assert(kIpcRequest == 0xC1084D01);
static_assert(ipcHeader(0x50, 3) == 0x0000600042000A00);
static_assert(ipcHeader(0x08, 0x23) == 0x0004600042000100);

COMMAND_IS(IpcGetFanDutyCmdV0, 0x57, 4);
FIELD_AT(IpcGetFanDutyCmdV0, header, 0, 8);
FIELD_AT(IpcGetFanDutyCmdV0, fanIndex, 8, 4);
FIELD_AT(IpcGetFanDutyCmdV0, status, 8, 4);
FIELD_AT(IpcGetFanDutyCmdV0, duty, 12, 4);
FIELD_AT(IpcGetFanDutyCmdV0, maxDuty, 16, 4);

COMMAND_IS(IpcGetFreqCmdV0, 0x47, 4);
FIELD_AT(IpcGetFreqCmdV0, header, 0, 8);
FIELD_AT(IpcGetFreqCmdV0, clockId, 8, 4);
FIELD_AT(IpcGetFreqCmdV0, status, 8, 4);
FIELD_AT(IpcGetFreqCmdV0, frequency, 12, 4);

COMMAND_IS(IpcGetDeviceInfoCmdV0, 0x7D, 0x1A);
FIELD_AT(IpcGetDeviceInfoCmdV0, header, 0, 8);
FIELD_AT(IpcGetDeviceInfoCmdV0, status, 8, 4);
FIELD_AT(IpcGetDeviceInfoCmdV0, head, 12, 24);

COMMAND_IS(IpcGetDeviceInfoCmdV1, 0x7D, 4);
FIELD_AT(IpcGetDeviceInfoCmdV1, header, 0, 8);
FIELD_AT(IpcGetDeviceInfoCmdV1, bufferHandle, 8, 4);
FIELD_AT(IpcGetDeviceInfoCmdV1, status, 8, 4);

COMMAND_IS(IpcGetMemEdcCmdV0, 0x1C, 4);
FIELD_AT(IpcGetMemEdcCmdV0, header, 0, 8);
FIELD_AT(IpcGetMemEdcCmdV0, bufferHandle, 8, 4);
FIELD_AT(IpcGetMemEdcCmdV0, status, 8, 4);
static_assert(sizeof(MemEdcCounters) == 388);
FIELD_AT(MemEdcCounters, channelCount, 0, 4);
ROWS_AT(MemEdcCounters, rows, 4, 24, 16);
FIELD_AT(MemEdcChannel, readErrors, 0, 4);
FIELD_AT(MemEdcChannel, writeErrors, 4, 4);
FIELD_AT(MemEdcChannel, readRetries, 8, 4);
FIELD_AT(MemEdcChannel, writeRetries, 12, 4);

COMMAND_IS(IpcGetFanEntryInfoCmdV0, 0x43, 2);
FIELD_AT(IpcGetFanEntryInfoCmdV0, header, 0, 8);
FIELD_AT(IpcGetFanEntryInfoCmdV0, status, 8, 4);
FIELD_AT(IpcGetFanEntryInfoCmdV0, count, 12, 4);

COMMAND_IS(IpcGetTemperatureLimitInfoV0, 0x58, 0x0C);
FIELD_AT(IpcGetTemperatureLimitInfoV0, header, 0, 8);
FIELD_AT(IpcGetTemperatureLimitInfoV0, status, 8, 4);
FIELD_AT(IpcGetTemperatureLimitInfoV0, slowdown, 12, 4);
FIELD_AT(IpcGetTemperatureLimitInfoV0, shutdown, 16, 4);

COMMAND_IS(IpcGetTempCmdV0, 0x50, 3);
FIELD_AT(IpcGetTempCmdV0, header, 0, 8);
FIELD_AT(IpcGetTempCmdV0, sensorId, 8, 4);
FIELD_AT(IpcGetTempCmdV0, status, 8, 4);
FIELD_AT(IpcGetTempCmdV0, temperature, 12, 4);
COMMAND_IS(IpcGetTempCmdV1, 0x50, 3);
FIELD_AT(IpcGetTempCmdV1, header, 0, 8);
FIELD_AT(IpcGetTempCmdV1, sensorId, 8, 4);
FIELD_AT(IpcGetTempCmdV1, status, 8, 4);
FIELD_AT(IpcGetTempCmdV1, temperature, 12, 4);

COMMAND_IS(IpcGetFanSpeedCmdV0, 0x51, 3);
FIELD_AT(IpcGetFanSpeedCmdV0, header, 0, 8);
FIELD_AT(IpcGetFanSpeedCmdV0, fanIndex, 8, 4);
FIELD_AT(IpcGetFanSpeedCmdV0, status, 8, 4);
FIELD_AT(IpcGetFanSpeedCmdV0, speed, 12, 4);

COMMAND_IS(IpcGetGpuVoltCmdV0, 0x56, 3);
FIELD_AT(IpcGetGpuVoltCmdV0, header, 0, 8);
FIELD_AT(IpcGetGpuVoltCmdV0, rail, 8, 4);
FIELD_AT(IpcGetGpuVoltCmdV0, status, 8, 4);
FIELD_AT(IpcGetGpuVoltCmdV0, voltage, 12, 4);
COMMAND_IS(IpcGetGpuVoltCmdV1, 0x56, 3);
FIELD_AT(IpcGetGpuVoltCmdV1, header, 0, 8);
FIELD_AT(IpcGetGpuVoltCmdV1, rail, 8, 4);
FIELD_AT(IpcGetGpuVoltCmdV1, status, 8, 4);
FIELD_AT(IpcGetGpuVoltCmdV1, voltage, 12, 4);

COMMAND_IS(IpcGetPowerCmdV0, 0x53, 3);
FIELD_AT(IpcGetPowerCmdV0, header, 0, 8);
FIELD_AT(IpcGetPowerCmdV0, domain, 8, 4);
FIELD_AT(IpcGetPowerCmdV0, status, 8, 4);
FIELD_AT(IpcGetPowerCmdV0, power, 12, 4);

COMMAND_IS(IpcGetMemoryTemperatureCmdV0, 0x17, 0x32);
FIELD_AT(IpcGetMemoryTemperatureCmdV0, header, 0, 8);
FIELD_AT(IpcGetMemoryTemperatureCmdV0, status, 8, 4);
FIELD_AT(IpcGetMemoryTemperatureCmdV0, temperature, 12, 4);

COMMAND_IS(IpcGetFwVerionCmdV0, 0x0B, 0x15);
FIELD_AT(IpcGetFwVerionCmdV0, header, 0, 8);
FIELD_AT(IpcGetFwVerionCmdV0, status, 8, 4);
ROWS_AT(IpcGetFwVerionCmdV0, versions, 12, 6, 4);

COMMAND_IS(IpcGetEfuseCmdV0, 0x08, 0x0E);
FIELD_AT(IpcGetEfuseCmdV0, header, 0, 8);
FIELD_AT(IpcGetEfuseCmdV0, wantedStart, 8, 4);
FIELD_AT(IpcGetEfuseCmdV0, wantedCount, 12, 4);
FIELD_AT(IpcGetEfuseCmdV0, status, 8, 4);
FIELD_AT(IpcGetEfuseCmdV0, startBit, 12, 4);
FIELD_AT(IpcGetEfuseCmdV0, bitCount, 16, 4);
ROWS_AT(IpcGetEfuseCmdV0, words, 20, 32, 4);
COMMAND_IS(IpcGetEfuseCmdV1, 0x08, 0x23);
FIELD_AT(IpcGetEfuseCmdV1, header, 0, 8);
FIELD_AT(IpcGetEfuseCmdV1, wantedStart, 8, 4);
FIELD_AT(IpcGetEfuseCmdV1, wantedCount, 12, 4);
FIELD_AT(IpcGetEfuseCmdV1, status, 8, 4);
FIELD_AT(IpcGetEfuseCmdV1, startBit, 12, 4);
FIELD_AT(IpcGetEfuseCmdV1, bitCount, 16, 4);
ROWS_AT(IpcGetEfuseCmdV1, words, 20, 32, 4);

REQUEST_IS(MkiAllocMemV0, 0xC0104D03, 16);
FIELD_AT(MkiAllocMemV0, size, 0, 4);
FIELD_AT(MkiAllocMemV0, mapSize, 4, 4);
FIELD_AT(MkiAllocMemV0, handle, 8, 8);
REQUEST_IS(MkiFreeMemV0, 0xC0104D04, 16);
FIELD_AT(MkiFreeMemV0, size, 0, 4);
FIELD_AT(MkiFreeMemV0, mapSize, 4, 4);
FIELD_AT(MkiFreeMemV0, handle, 8, 8);

static_assert(sizeof(BoardHead) == 24 && sizeof(BoardData) == 616);
FIELD_AT(BoardHead, version, 0, 4);
FIELD_AT(BoardHead, memSizeIndex, 4, 4);
FIELD_AT(BoardHead, ddrFreqType, 8, 4);
FIELD_AT(BoardHead, memType, 12, 1);
FIELD_AT(BoardHead, memVendor, 13, 1);
FIELD_AT(BoardHead, channelCount, 14, 1);
FIELD_AT(BoardHead, channelWidth, 15, 1);
FIELD_AT(BoardHead, coreCount, 16, 1);
FIELD_AT(BoardHead, unitsPerCore, 17, 1);
FIELD_AT(BoardHead, gpuMaxClock, 18, 2);
FIELD_AT(BoardHead, clusterCount, 20, 1);
FIELD_AT(BoardHead, dispCount, 22, 2);
FIELD_AT(BoardData, head, 0, 24);
ROWS_AT(BoardData, rows, 24, 8, 16);
FIELD_AT(BoardData, boardName, 152, 64);
FIELD_AT(BoardDisplayRow, type, 0, 4);
FIELD_AT(BoardDisplayRow, hRes, 4, 4);
FIELD_AT(BoardDisplayRow, vRes, 8, 4);
FIELD_AT(BoardDisplayRow, pixelClock, 12, 4);
REQUEST_IS(MkiGetBoardCfgCapV2, 0x80684DAC, 104);
FIELD_AT(MkiGetBoardCfgCapV2, head, 0, 24);
ROWS_AT(MkiGetBoardCfgCapV2, rows, 24, 5, 16);

}  // namespace kelp::linux_
