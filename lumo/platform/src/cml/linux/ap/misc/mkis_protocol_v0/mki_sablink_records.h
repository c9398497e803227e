#pragma once

#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"
#include "linux/ap/misc/sablink_exchange.h"

// Sablink: the ports that join devices. Some records have the number of one of PCI Express and differ
// from it in size or direction, which the driver tells apart.

namespace kelp::linux_ {

struct [[gnu::packed]] MkiGetSablinkSpecV1 {
  u32 linkCount;  // 0
  u32 linkSpeed;  // 4, Mbit/s
  u32 version;    // 8, times 100
};
MKI_CALL(MkiGetSablinkSpecV1, 17, 1, 0x800C4DC0);

struct [[gnu::packed]] MkiGetSablinkCapStatusV1 {
  u32 link;        // 0, in
  u32 capability;  // 4, in
  u32 status;      // 8
};
MKI_CALL(MkiGetSablinkCapStatusV1, 18, 1, 0x800C4DC1);

struct [[gnu::packed]] MkiGetSablinkStateV1 {
  u32 link;   // 0, in
  u32 state;  // 4
};
MKI_CALL(MkiGetSablinkStateV1, 19, 1, 0x80084DC2);

struct [[gnu::packed]] MkiSablinkErrCnt {
  u32 link;   // 0, in
  u32 kind;   // 4, in
  u64 value;  // 8, since boot or reset
};
/// Both versions are one request to the driver; what a driver of the first counts is known from its list
/// alone.
struct [[gnu::packed]] MkiGetSablinkErrCntV1 : MkiSablinkErrCnt {};
MKI_CALL(MkiGetSablinkErrCntV1, 20, 1, 0x80104DC3);
struct [[gnu::packed]] MkiGetSablinkErrCntV2 : MkiSablinkErrCnt {};
MKI_CALL(MkiGetSablinkErrCntV2, 20, 2, 0x80104DC3);

/// The first version counts replays, recoveries, framing errors and corrections, nothing more.
inline KelpReturn fillRequest(MkiGetSablinkErrCntV1& request, const QuerySablinkErrCounterParam& param) {
  constexpr u32 kLastKind = 3;
  if (param.kind > kLastKind) {
    return KelpReturn::kNotSupported;
  }
  request.link = param.link;
  request.kind = param.kind;
  return KelpReturn::kSuccess;
}

struct [[gnu::packed]] MkiResetSablinkErrConfV1 {
  u32 link;  // 0, in
};
MKI_CALL(MkiResetSablinkErrConfV1, 21, 1, 0x40044DC4);

struct [[gnu::packed]] MkiSablinkLayoutRow {
  u32 localPort;   // 0
  u32 remotePort;  // 4
};
struct [[gnu::packed]] MkiGetSablinkLayoutV1 {
  u32 count;                     // 0
  u32 peer;                      // 4, in
  MkiSablinkLayoutRow rows[16];  // 8
};
MKI_CALL(MkiGetSablinkLayoutV1, 22, 1, 0x80884DC5);

struct [[gnu::packed]] MkiGetSablinkRemoteDevV1 {
  u32 link;          // 0, in
  u64 remoteSbdf;    // 4, packed
  u32 remoteLink;    // 12
  u16 remoteMiscId;  // 16
  WIRE_GAP(18, 36);
};
MKI_CALL(MkiGetSablinkRemoteDevV1, 23, 1, 0x80244DC6);

struct [[gnu::packed]] MkiSablinkPathRow {
  u32 deviceCount;  // 0
  u32 miscIds[16];  // 4
};
struct [[gnu::packed]] MkiGetSablinkShortestPathsV1 {
  u32 count;                   // 0
  u32 peer;                    // 4, in
  MkiSablinkPathRow rows[16];  // 8
};
MKI_CALL(MkiGetSablinkShortestPathsV1, 24, 1, 0x84484DC7);

struct [[gnu::packed]] MkiSablinkPerfStartV0 {
  u32 link;            // 0, in
  u32 sessionId;       // 4
  u32 actualInterval;  // 8, milliseconds
};
MKI_CALL(MkiSablinkPerfStartV0, 36, 0, 0xC00C4DC8);

struct [[gnu::packed]] MkiSablinkPerfReadV0 {
  u64 selector;  // 0, in, link and session
  u64 rxBytes;   // 8
  u64 txBytes;   // 16
  u64 rxRate;    // 24
  u64 txRate;    // 32
  u32 samples;   // 40
  WIRE_GAP(44, 48);
};
MKI_CALL(MkiSablinkPerfReadV0, 37, 0, 0xC0304DC9);

struct [[gnu::packed]] MkiSablinkPerfStopV0 {
  u64 selector;  // 0, in, link and session
  u32 samples;   // 8
};
MKI_CALL(MkiSablinkPerfStopV0, 38, 0, 0xC00C4DCA);

struct [[gnu::packed]] MkiSablinkLaneRow {
  u32 state;      // 0
  u32 eyeWidth;   // 4
  u32 eyeHeight;  // 8
  u32 bitErrors;  // 12
};
/// The link that is asked for lies where the first lane's row comes back.
struct [[gnu::packed]] MkiGetSablinkSerdesStatusV0 {
  u32 laneCount;  // 0, in and out
  union [[gnu::packed]] {
    u32 link;                   // 4, in
    MkiSablinkLaneRow rows[4];  // 4
  };
};
MKI_CALL(MkiGetSablinkSerdesStatusV0, 39, 0, 0xC0444DCB);

}  // namespace kelp::linux_
