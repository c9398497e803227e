#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Memory of a device, the processes that hold it, and its error correction.

namespace kelp::linux_ {

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MciGetDeviceMemUsageV1 {
  u64 total;      // 0
  u64 used;       // 8, the driver's own count
  u64 region[3];  // 16, processes, driver, firmware
  WIRE_GAP(40, 72);
};
MCI_RECORD(MciGetDeviceMemUsageV1, 3, 1, 72);

struct [[gnu::packed]] MciProcessMemRow {
  u64 gpuMemory;     // 0
  u64 systemMemory;  // 8
  u32 kind;          // 16, 0 graphics, 1 compute
  u32 pid;           // 20
  WIRE_GAP(24, 92);
};
struct [[gnu::packed]] MciGetProcessLevelMemV3 {
  u32 count;  // 0
  WIRE_GAP(4, 8);
  MciProcessMemRow rows[80];  // 8
  WIRE_GAP(7368, 7384);
};
MCI_RECORD(MciGetProcessLevelMemV3, 4, 3, 7384);

struct [[gnu::packed]] MciGetEccModeV1 {
  u32 current;  // 0
  u8 pending;   // 4, after the next reset
  WIRE_GAP(5, 21);
};
MCI_RECORD(MciGetEccModeV1, 48, 1, 21);

struct [[gnu::packed]] MciGetDdrConfInfoV1 {
  u64 maxClock;  // 0, hertz, 0 unknown
  WIRE_GAP(8, 9);
  u8 typeVendor;  // 9, bits 0 to 3 type, bits 4 to 7 vendor
  WIRE_GAP(10, 14);
  u16 channels;  // 14, bits 0 to 7 count, bits 8 to 15 width in bits
  WIRE_GAP(16, 24);
};
MCI_RECORD(MciGetDdrConfInfoV1, 57, 1, 24);

}  // namespace kelp::linux_
