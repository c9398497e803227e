#pragma once

#include "linux/ap/mki_access.h"
#include "linux/ap/mki_list.h"

// Records of protocol 0 that every driver of that age answers, even one that answers no probe.

namespace kelp::linux_ {

MKI_RECORD(MkiMkisList, 0xC1484DB1);

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
MKI_RECORD(MkiGetDeviceStatusV0, 0xC0484D05);

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
MKI_RECORD(MkiGetDeviceStatusV1, 0xC0584D05);

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MkiGetDeviceMemUsageV0 {
  u64 total;          // 0
  u64 used;           // 8, the driver's own count
  u64 region[4];      // 16, processes, driver, firmware, scan-out
  u64 systemTotal;    // 48
  u64 guestReserved;  // 56
  WIRE_GAP(64, 160);
};
MKI_RECORD(MkiGetDeviceMemUsageV0, 0xC0A04DA6);

/// A process; the versions of the list differ in what lies between two rows.
template <std::size_t Size>
struct [[gnu::packed]] MkiProcessMemRow {
  u64 gpuMemory;     // 0
  u64 systemMemory;  // 8
  u32 kind;          // 16
  u32 pid;           // 20
  WIRE_GAP(24, Size);
};
template <std::size_t FirstRow, std::size_t RowSize>
struct [[gnu::packed]] MkiProcessLevelMem {
  u32 count;  // 0
  WIRE_GAP(4, FirstRow);
  MkiProcessMemRow<RowSize> rows[80];
};
struct [[gnu::packed]] MkiGetProcessLevelMemV0 : MkiProcessLevelMem<8, 184> {};
MKI_RECORD(MkiGetProcessLevelMemV0, 0xB9884DA7);
struct [[gnu::packed]] MkiGetProcessLevelMemV1 : MkiProcessLevelMem<8, 192> {};
MKI_RECORD(MkiGetProcessLevelMemV1, 0xBC084DA7);
struct [[gnu::packed]] MkiGetProcessLevelMemV2 : MkiProcessLevelMem<16, 112> {};
MKI_RECORD(MkiGetProcessLevelMemV2, 0xA3104DA7);

struct [[gnu::packed]] MkiGetPciConfigSpaceV0 {
  u8 configSpace[264];  // 0
};
MKI_RECORD(MkiGetPciConfigSpaceV0, 0x81084DA9);

}  // namespace kelp::linux_
