#pragma once

#include "linux/ap/misc/mkis_protocol_v0/ipc_record.h"

// Commands for clocks, fans, power, voltage and temperatures. Where a command has two forms, the first is
// that of the first chip family and the second that of all others.

namespace kelp::linux_ {

struct [[gnu::packed]] IpcGetFreqCmdV0 {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 clockId;  // 8, in
    u32 status;   // 8
  };
  u32 frequency;  // 12, hertz
  WIRE_GAP(16, 264);
};
IPC_RECORD(IpcGetFreqCmdV0, 0x47, 4);

struct [[gnu::packed]] IpcGetFanEntryInfoCmdV0 {
  u64 header;  // 0
  u32 status;  // 8
  u32 count;   // 12
  WIRE_GAP(16, 264);
};
IPC_RECORD(IpcGetFanEntryInfoCmdV0, 0x43, 2);

/// Both in steps of the controller.
struct [[gnu::packed]] IpcGetFanDutyCmdV0 {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 fanIndex;  // 8, in
    u32 status;    // 8
  };
  u32 duty;     // 12
  u32 maxDuty;  // 16
  WIRE_GAP(20, 264);
};
IPC_RECORD(IpcGetFanDutyCmdV0, 0x57, 4);

struct [[gnu::packed]] IpcGetFanSpeedCmdV0 {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 fanIndex;  // 8, in
    u32 status;    // 8
  };
  u32 speed;  // 12, revolutions per minute
  WIRE_GAP(16, 264);
};
IPC_RECORD(IpcGetFanSpeedCmdV0, 0x51, 3);

struct [[gnu::packed]] IpcGetPowerCmdV0 {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 domain;  // 8, in
    u32 status;  // 8
  };
  u32 power;  // 12, milliwatts
  WIRE_GAP(16, 264);
};
IPC_RECORD(IpcGetPowerCmdV0, 0x53, 3);

struct [[gnu::packed]] IpcGetGpuVoltCmd {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 rail;    // 8, in
    u32 status;  // 8
  };
  u32 voltage;  // 12, millivolts
  WIRE_GAP(16, 264);
};
struct [[gnu::packed]] IpcGetGpuVoltCmdV0 : IpcGetGpuVoltCmd {};
IPC_RECORD(IpcGetGpuVoltCmdV0, 0x56, 3);
struct [[gnu::packed]] IpcGetGpuVoltCmdV1 : IpcGetGpuVoltCmd {};
IPC_RECORD(IpcGetGpuVoltCmdV1, 0x56, 3);

struct [[gnu::packed]] IpcGetTempCmd {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 sensorId;  // 8, in
    u32 status;    // 8
  };
  s32 temperature;  // 12
  WIRE_GAP(16, 264);
};
/// Degrees Celsius.
struct [[gnu::packed]] IpcGetTempCmdV0 : IpcGetTempCmd {};
IPC_RECORD(IpcGetTempCmdV0, 0x50, 3);
/// Thousandths of a degree Celsius.
struct [[gnu::packed]] IpcGetTempCmdV1 : IpcGetTempCmd {};
IPC_RECORD(IpcGetTempCmdV1, 0x50, 3);

struct [[gnu::packed]] IpcGetMemoryTemperatureCmdV0 {
  u64 header;       // 0
  u32 status;       // 8
  u32 temperature;  // 12, degrees Celsius
  WIRE_GAP(16, 264);
};
IPC_RECORD(IpcGetMemoryTemperatureCmdV0, 0x17, 0x32);

/// Thousandths of a degree Celsius; the lowest number is that of a limit that is not available.
struct [[gnu::packed]] IpcGetTemperatureLimitInfoV0 {
  u64 header;    // 0
  u32 status;    // 8
  s32 slowdown;  // 12
  s32 shutdown;  // 16
  WIRE_GAP(20, 264);
};
IPC_RECORD(IpcGetTemperatureLimitInfoV0, 0x58, 0x0C);

}  // namespace kelp::linux_
