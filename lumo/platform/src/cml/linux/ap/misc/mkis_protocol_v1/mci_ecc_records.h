#pragma once

#include "linux/ap/misc/memory_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Error correction of the memory and the pages that it took out of use.

namespace kelp::linux_ {

struct [[gnu::packed]] MciGetEccRetiredPagesCntV1 {
  u32 singleBit;  // 0
  u32 doubleBit;  // 4
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetEccRetiredPagesCntV1, 45, 1, 24);

/// One page by cause and index; the wish lies in bytes of the page's row that the reply leaves unused.
struct [[gnu::packed]] MciGetEccRetiredPagesInfoV1 {
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
MCI_RECORD(MciGetEccRetiredPagesInfoV1, 46, 1, 56);

struct [[gnu::packed]] MciGetEccRetiredPagesPendingInfoV1 {
  u64 count;          // 0
  u64 address;        // 8
  u64 timestamp;      // 16, seconds since the epoch
  u32 wantedIndex;    // 24, in
  u32 cause;          // 28
  u64 location;       // 32
  u64 errorCount;     // 40
  u64 lastErrorTime;  // 48, seconds since the epoch
};
MCI_RECORD(MciGetEccRetiredPagesPendingInfoV1, 47, 1, 56);

struct [[gnu::packed]] MciGetEccModeV1 {
  u32 current;  // 0
  u8 pending;   // 4, after the next reset
  WIRE_GAP(5, 21);
};
MCI_RECORD(MciGetEccModeV1, 48, 1, 21);

struct [[gnu::packed]] MciSetEccModeV1 {
  u32 mode;  // 0, in
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciSetEccModeV1, 49, 1, 20);

struct [[gnu::packed]] MciGetEccErrorsV0 {
  u32 errorType;    // 0, in
  u32 counterType;  // 4, in
  u32 location;     // 8, in
  u64 value;        // 12
  WIRE_GAP(20, 36);
};
MCI_RECORD(MciGetEccErrorsV0, 69, 0, 36);

inline void fillRequest(MciGetEccErrorsV0& request, const QueryEccErrorsParam& param) {
  request.errorType = param.errorType;
  request.counterType = param.counterType;
  request.location = param.location;
}
inline unsigned long long readReply(const MciGetEccErrorsV0& reply) {
  return reply.value;
}

struct [[gnu::packed]] MciClearEccErrorsV0 {
  u32 kind;  // 0, in, 0 volatile, 1 aggregate
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciClearEccErrorsV0, 70, 0, 20);

inline void fillRequest(MciClearEccErrorsV0& request, EccCounterType kind) {
  request.kind = static_cast<u32>(kind);
}

}  // namespace kelp::linux_
