#pragma once

#include "linux/ap/misc/memory_exchange.h"
#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"

// Memory of a device, the processes and vGPUs that hold it, and its error correction.

namespace kelp::linux_ {

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MkiGetDeviceMemUsageV0 {
  u64 total;          // 0
  u64 used;           // 8, the driver's own count
  u64 region[4];      // 16, processes, driver, firmware, scan-out
  u64 systemTotal;    // 48
  u64 guestReserved;  // 56
  WIRE_GAP(64, 160);
};
MKI_CALL(MkiGetDeviceMemUsageV0, 3, 0, 0xC0A04DA6);

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
MKI_CALL(MkiGetProcessLevelMemV0, 4, 0, 0xB9884DA7);
struct [[gnu::packed]] MkiGetProcessLevelMemV1 : MkiProcessLevelMem<8, 192> {};
MKI_CALL(MkiGetProcessLevelMemV1, 4, 1, 0xBC084DA7);
struct [[gnu::packed]] MkiGetProcessLevelMemV2 : MkiProcessLevelMem<16, 112> {};
MKI_CALL(MkiGetProcessLevelMemV2, 4, 2, 0xA3104DA7);

struct [[gnu::packed]] MkiGetVgpuUtilV0 {
  u32 vgpuId;       // 0, in
  u32 utilization;  // 4, percent
};
MKI_CALL(MkiGetVgpuUtilV0, 33, 0, 0x80084DD0);

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MkiGetVgpuMemInfoV0 {
  u32 vgpuId;  // 0, in
  u64 total;   // 4
  u64 used;    // 12
};
MKI_CALL(MkiGetVgpuMemInfoV0, 34, 0, 0x80144DD1);

struct [[gnu::packed]] MkiGetEccRetiredPagesCntV0 {
  u32 singleBit;  // 0
  u32 doubleBit;  // 4
};
MKI_CALL(MkiGetEccRetiredPagesCntV0, 45, 0, 0x80084DE2);

/// One page by cause and index; the wish lies in bytes of the page's row that the reply leaves unused.
struct [[gnu::packed]] MkiGetEccRetiredPagesInfoV0 {
  u64 count;        // 0
  u64 address;      // 8
  u64 timestamp;    // 16, seconds since the epoch
  u32 wantedCause;  // 24, in
  u32 wantedIndex;  // 28, in
  WIRE_GAP(32, 36);
  u32 cause;       // 36
  u64 location;    // 40
  u64 errorCount;  // 48
};
MKI_CALL(MkiGetEccRetiredPagesInfoV0, 46, 0, 0x80384DE3);

struct [[gnu::packed]] MkiGetEccRetiredPagesPendingInfoV0 {
  u64 count;          // 0
  u64 address;        // 8
  u64 timestamp;      // 16, seconds since the epoch
  u32 wantedIndex;    // 24, in
  u32 cause;          // 28
  u64 location;       // 32
  u64 errorCount;     // 40
  u64 lastErrorTime;  // 48, seconds since the epoch
};
MKI_CALL(MkiGetEccRetiredPagesPendingInfoV0, 47, 0, 0x80384DE4);

struct [[gnu::packed]] MkiGetEccModeV0 {
  u32 current;  // 0
  u8 pending;   // 4, after the next reset
};
MKI_CALL(MkiGetEccModeV0, 48, 0, 0x80054DE5);

struct [[gnu::packed]] MkiSetEccModeV0 {
  u32 mode;  // 0, in
};
MKI_CALL(MkiSetEccModeV0, 49, 0, 0x40044DE6);

}  // namespace kelp::linux_
