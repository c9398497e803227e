#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"
#include "linux/ap/misc/sablink_exchange.h"

// Sablink: the ports that join devices.

namespace kelp::linux_ {

struct [[gnu::packed]] MciGetSablinkSpecV2 {
  u32 linkCount;  // 0
  u32 linkSpeed;  // 4, Mbit/s
  u32 version;    // 8, times 100
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetSablinkSpecV2, 17, 2, 28);

struct [[gnu::packed]] MciGetSablinkCapStatusV2 {
  u32 link;        // 0, in
  u32 capability;  // 4, in
  u32 status;      // 8
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetSablinkCapStatusV2, 18, 2, 28);

struct [[gnu::packed]] MciGetSablinkStateV2 {
  u32 link;   // 0, in
  u32 state;  // 4
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetSablinkStateV2, 19, 2, 24);

struct [[gnu::packed]] MciGetSablinkErrCntV3 {
  u32 link;   // 0, in
  u32 kind;   // 4, in
  u64 value;  // 8, since boot or reset
  WIRE_GAP(16, 32);
};
MCI_RECORD(MciGetSablinkErrCntV3, 20, 3, 32);

struct [[gnu::packed]] MciResetSablinkErrConfV2 {
  u32 link;  // 0, in
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciResetSablinkErrConfV2, 21, 2, 20);

struct [[gnu::packed]] MciSablinkLayoutRow {
  u32 localPort;   // 0
  u32 remotePort;  // 4
};
struct [[gnu::packed]] MciGetSablinkLayoutV2 {
  u32 count;                     // 0
  u16 peer;                      // 4, in
  MciSablinkLayoutRow rows[48];  // 6
  WIRE_GAP(390, 406);
};
MCI_RECORD(MciGetSablinkLayoutV2, 22, 2, 406);

struct [[gnu::packed]] MciGetSablinkRemoteDevV2 {
  u32 link;          // 0, in
  u64 remoteSbdf;    // 4, packed
  u32 remoteLink;    // 12
  u16 remoteMiscId;  // 16
  WIRE_GAP(18, 34);
};
MCI_RECORD(MciGetSablinkRemoteDevV2, 23, 2, 34);

constexpr std::size_t kPathDevices = 24;

struct [[gnu::packed]] MciSablinkPathRow {
  u32 deviceCount;            // 0
  u16 miscIds[kPathDevices];  // 4
};
struct [[gnu::packed]] MciGetSablinkShortestPathsV2 {
  u32 count;                   // 0
  u16 peer;                    // 4, in
  MciSablinkPathRow rows[16];  // 6
  WIRE_GAP(838, 854);
};
MCI_RECORD(MciGetSablinkShortestPathsV2, 24, 2, 854);

struct [[gnu::packed]] MciSablinkPerfStartV1 {
  u32 link;            // 0, in
  u32 sessionId;       // 4
  u32 actualInterval;  // 8, milliseconds
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciSablinkPerfStartV1, 36, 1, 28);

struct [[gnu::packed]] MciSablinkPerfReadV1 {
  WIRE_GAP(0, 8);
  u64 rxBytes;  // 8
  u64 txBytes;  // 16
  u64 rxRate;   // 24
  u64 txRate;   // 32
  u32 samples;  // 40
  WIRE_GAP(44, 48);
  u64 selector;  // 48, in, link and session
  WIRE_GAP(56, 60);
};
MCI_RECORD(MciSablinkPerfReadV1, 37, 1, 60);

struct [[gnu::packed]] MciSablinkPerfStopV1 {
  WIRE_GAP(0, 8);
  u32 samples;  // 8
  WIRE_GAP(12, 16);
  u64 selector;  // 16, in, link and session
  WIRE_GAP(24, 28);
};
MCI_RECORD(MciSablinkPerfStopV1, 38, 1, 28);

struct [[gnu::packed]] MciSablinkLaneRow {
  u32 state;      // 0
  u32 eyeWidth;   // 4
  u32 eyeHeight;  // 8
  u32 bitErrors;  // 12
};
/// The link that is asked for lies where the first lane's row comes back.
struct [[gnu::packed]] MciGetSablinkSerdesStatusV1 {
  u32 laneCount;  // 0, in and out
  union [[gnu::packed]] {
    u32 link;                   // 4, in
    MciSablinkLaneRow rows[4];  // 4
  };
  WIRE_GAP(68, 84);
};
MCI_RECORD(MciGetSablinkSerdesStatusV1, 39, 1, 84);

}  // namespace kelp::linux_
