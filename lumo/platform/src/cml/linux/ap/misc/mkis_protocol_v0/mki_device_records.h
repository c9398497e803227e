#pragma once

#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"

// Description, load and reset of a device.

namespace kelp::linux_ {

/// All in percent, all ones for a figure that is not available.
struct [[gnu::packed]] MkiGetDeviceStatusV0 {
  u32 utilization;  // 0
  u32 engine0;      // 4
  u32 engine1;      // 8
  u32 engine2;      // 12
  u32 engine3;      // 16
  u32 memoryBusy;   // 20
  WIRE_GAP(24, 40);
  u32 coreAverage;  // 40
  WIRE_GAP(44, 72);
};
MKI_CALL(MkiGetDeviceStatusV0, 2, 0, 0xC0484D05);

struct [[gnu::packed]] MkiGetDeviceStatusV1 {
  u32 utilization;  // 0
  u32 engine0;      // 4
  u32 engine1;      // 8
  u32 engine2;      // 12
  u32 engine3;      // 16
  u32 memoryBusy;   // 20
  u32 coreMax;      // 24
  WIRE_GAP(28, 40);
  u32 coreAverage;  // 40
  WIRE_GAP(44, 88);
};
MKI_CALL(MkiGetDeviceStatusV1, 2, 1, 0xC0584D05);

/// 65535 in a node number says that there is no such node.
struct [[gnu::packed]] MkiGetMgtDevDescV0 {
  u16 miscId;   // 0
  u16 value32;  // 2, number of GPU cores
  u64 value64;  // 4, mask of usable cores
  WIRE_GAP(12, 16);
  u32 devType;       // 16, 0 plain device, 1 MPC parent, 2 MPC instance
  u32 flagA;         // 20, MPC capable
  u32 flagB;         // 24, has Sablink ports
  u16 cardId;        // 28
  u16 renderId;      // 30
  u16 parentMiscId;  // 32
  u64 sbdf;          // 34, packed PCI address
};
MKI_CALL(MkiGetMgtDevDescV0, 8, 0, 0x802A4DB2);

struct [[gnu::packed]] MkiResetGpuV0 {
  WIRE_GAP(0, 4);
};
MKI_CALL(MkiResetGpuV0, 29, 0, 0x40044DBB);

struct [[gnu::packed]] MkiProcessGpuUtilRow {
  u32 pid;        // 0
  u32 kind;       // 4
  u64 timestamp;  // 8, of the last activity, nanoseconds of the monotonic clock
  u32 gpu;        // 16, shares in percent, as all that follow
  u32 memory;     // 20
  u32 encoder;    // 24
  u32 decoder;    // 28
  WIRE_GAP(32, 40);
};
/// A sample is asked for in one phase and fetched in another.
struct [[gnu::packed]] MkiGetProcessGpuUtilV0 {
  u32 phase;            // 0, in
  u32 environmentType;  // 4, in
  WIRE_GAP(8, 24);
  u64 lastSeen;  // 24, in, nanoseconds
  u32 ready;     // 32
  u32 count;     // 36
  WIRE_GAP(40, 48);
  MkiProcessGpuUtilRow rows[80];  // 48
};
MKI_CALL(MkiGetProcessGpuUtilV0, 30, 0, 0x8CB04DBC);

struct [[gnu::packed]] MkiGetInfoRomV0 {
  char serialNumber[64];  // 0
  char brand[64];         // 64
};
MKI_CALL(MkiGetInfoRomV0, 32, 0, 0x80804DAD);

struct [[gnu::packed]] MkiResetDeviceEventMsgsV0 {
  WIRE_GAP(0, 16);
};
MKI_CALL(MkiResetDeviceEventMsgsV0, 43, 0, 0x40104DE1);

struct [[gnu::packed]] MkiResetGpuHwErrorCountsV0 {
  u64 mask;  // 0, in, a bit per group of counters
};
MKI_CALL(MkiResetGpuHwErrorCountsV0, 44, 0, 0x40084DBD);

struct [[gnu::packed]] MkiResetDeviceV0 {
  WIRE_GAP(0, 4);
};
MKI_CALL(MkiResetDeviceV0, 50, 0, 0x40044DEA);

}  // namespace kelp::linux_
