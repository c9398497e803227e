#pragma once

#include "linux/ap/misc/mkis_protocol_v0/board_data.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_record.h"

// Commands for the board, its firmware, its memory and the chip's identity. A command whose reply is too
// long for its record leaves it in a shared buffer.

namespace kelp::linux_ {

/// The first bytes of the board's data, in the reply itself.
struct [[gnu::packed]] IpcGetDeviceInfoCmdV0 {
  u64 header;      // 0
  u32 status;      // 8
  BoardHead head;  // 12
  WIRE_GAP(36, 264);
};
IPC_RECORD(IpcGetDeviceInfoCmdV0, 0x7D, 0x1A);

struct [[gnu::packed]] IpcBufferCmd {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 bufferHandle;  // 8, in, its low half
    u32 status;        // 8
  };
  WIRE_GAP(12, 264);
};
struct [[gnu::packed]] IpcGetDeviceInfoCmdV1 : IpcBufferCmd {};
IPC_RECORD(IpcGetDeviceInfoCmdV1, 0x7D, 4);
struct [[gnu::packed]] IpcGetMemEdcCmdV0 : IpcBufferCmd {};
IPC_RECORD(IpcGetMemEdcCmdV0, 0x1C, 4);

struct [[gnu::packed]] MemEdcChannel {
  u32 readErrors;    // 0
  u32 writeErrors;   // 4
  u32 readRetries;   // 8
  u32 writeRetries;  // 12
};
/// What the command for the memory's error detection leaves in its buffer.
struct [[gnu::packed]] MemEdcCounters {
  u32 channelCount;        // 0
  MemEdcChannel rows[24];  // 4
};

struct [[gnu::packed]] IpcGetFwVerionCmdV0 {  // sic
  u64 header;                                 // 0
  u32 status;                                 // 8
  u32 versions[6];                            // 12
  WIRE_GAP(36, 264);
};
IPC_RECORD(IpcGetFwVerionCmdV0, 0x0B, 0x15);

struct [[gnu::packed]] IpcGetEfuseCmd {
  u64 header;  // 0
  union [[gnu::packed]] {
    u32 wantedStart;  // 8, in
    u32 status;       // 8
  };
  union [[gnu::packed]] {
    u32 wantedCount;  // 12, in
    u32 startBit;     // 12, first bit delivered
  };
  u32 bitCount;   // 16
  u32 words[32];  // 20
  WIRE_GAP(148, 264);
};
struct [[gnu::packed]] IpcGetEfuseCmdV0 : IpcGetEfuseCmd {};
IPC_RECORD(IpcGetEfuseCmdV0, 0x08, 0x0E);
struct [[gnu::packed]] IpcGetEfuseCmdV1 : IpcGetEfuseCmd {};
IPC_RECORD(IpcGetEfuseCmdV1, 0x08, 0x23);

}  // namespace kelp::linux_
