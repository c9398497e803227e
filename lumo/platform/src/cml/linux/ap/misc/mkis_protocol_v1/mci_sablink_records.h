#pragma once

#include <bit>
#include <span>

#include "commands.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Sablink: the ports that join devices.

namespace kelp::linux_ {

/// Links that a device is believed to have.
constexpr u32 kMaxSablinks = 32;

struct [[gnu::packed]] MciGetSablinkSpecV2 {
  u32 linkCount;  // 0
  u32 linkSpeed;  // 4, Mbit/s
  u32 version;    // 8, times 100
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetSablinkSpecV2, 17, 2, 28);

inline SablinkSpec readReply(const MciGetSablinkSpecV2& reply) {
  return {.linkCount = std::min(u32{reply.linkCount}, kMaxSablinks),
          .linkSpeed = reply.linkSpeed,
          .version = reply.version};
}

struct [[gnu::packed]] MciGetSablinkCapStatusV2 {
  u32 link;        // 0, in
  u32 capability;  // 4, in
  u32 status;      // 8
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetSablinkCapStatusV2, 18, 2, 28);

inline void fillRequest(MciGetSablinkCapStatusV2& request, const QuerySablinkCapStatusParam& param) {
  request.link = param.link;
  request.capability = param.capability;
}
inline SablinkCapStatus readReply(const MciGetSablinkCapStatusV2& reply) {
  return static_cast<SablinkCapStatus>(u32{reply.status});
}

struct [[gnu::packed]] MciGetSablinkStateV2 {
  u32 link;   // 0, in
  u32 state;  // 4
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetSablinkStateV2, 19, 2, 24);

inline void fillRequest(MciGetSablinkStateV2& request, const QuerySablinkStateParam& param) {
  request.link = param.link;
}
inline SablinkState readReply(const MciGetSablinkStateV2& reply) {
  return static_cast<SablinkState>(u32{reply.state});
}

struct [[gnu::packed]] MciGetSablinkErrCntV3 {
  u32 link;   // 0, in
  u32 kind;   // 4, in
  u64 value;  // 8, since boot or reset
  WIRE_GAP(16, 32);
};
MCI_RECORD(MciGetSablinkErrCntV3, 20, 3, 32);

inline void fillRequest(MciGetSablinkErrCntV3& request, const QuerySablinkErrCounterParam& param) {
  request.link = param.link;
  request.kind = param.kind;
}
inline unsigned long readReply(const MciGetSablinkErrCntV3& reply) {
  return reply.value;
}

struct [[gnu::packed]] MciResetSablinkErrConfV2 {
  u32 link;  // 0, in
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciResetSablinkErrConfV2, 21, 2, 20);

inline void fillRequest(MciResetSablinkErrConfV2& request, unsigned int link) {
  request.link = link;
}

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

inline void fillRequest(MciGetSablinkLayoutV2& request, const QuerySablinkLayoutsParam& param) {
  request.peer = saturated<u16>(param.peer);
}
inline std::vector<SablinkLayout> readReply(const MciGetSablinkLayoutV2& reply) {
  std::vector<SablinkLayout> layouts;
  for (const MciSablinkLayoutRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    layouts.push_back({.localPort = row.localPort, .remotePort = row.remotePort});
  }
  return layouts;
}

struct [[gnu::packed]] MciGetSablinkRemoteDevV2 {
  u32 link;          // 0, in
  u64 remoteSbdf;    // 4, packed
  u32 remoteLink;    // 12
  u16 remoteMiscId;  // 16
  WIRE_GAP(18, 34);
};
MCI_RECORD(MciGetSablinkRemoteDevV2, 23, 2, 34);

inline void fillRequest(MciGetSablinkRemoteDevV2& request, const QuerySablinkStateParam& param) {
  request.link = param.link;
}
inline SablinkRemoteDevInfo readReply(const MciGetSablinkRemoteDevV2& reply) {
  return {.sbdf = reply.remoteSbdf, .link = reply.remoteLink, .miscId = reply.remoteMiscId};
}

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

inline void fillRequest(MciGetSablinkShortestPathsV2& request, const QuerySablinkLayoutsParam& param) {
  request.peer = saturated<u16>(param.peer);
}
inline std::vector<SablinkPath> readReply(const MciGetSablinkShortestPathsV2& reply) {
  std::vector<SablinkPath> paths;
  for (const MciSablinkPathRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    SablinkPath& path = paths.emplace_back();
    for (std::size_t i = 0; i < std::min(std::size_t{row.deviceCount}, kPathDevices); ++i) {
      path.miscIds.push_back(row.miscIds[i]);
    }
  }
  return paths;
}

struct [[gnu::packed]] MciSablinkPerfStartV1 {
  u32 link;            // 0, in
  u32 sessionId;       // 4
  u32 actualInterval;  // 8, milliseconds
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciSablinkPerfStartV1, 36, 1, 28);

inline void fillRequest(MciSablinkPerfStartV1& request, const StartSablinkPerfParam& param) {
  request.link = param.link;
}
inline SablinkPerfStart readReply(const MciSablinkPerfStartV1& reply) {
  return {.sessionId = reply.sessionId, .actualInterval = reply.actualInterval};
}

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

inline void fillRequest(MciSablinkPerfReadV1& request, const QuerySablinkPerfDataParam& param) {
  request.selector = selectorOf(param.link, param.sessionId);
}
inline SablinkPerfData readReply(const MciSablinkPerfReadV1& reply) {
  return {.rxBytes = reply.rxBytes,
          .txBytes = reply.txBytes,
          .rxRate = reply.rxRate,
          .txRate = reply.txRate,
          .samples = reply.samples};
}

struct [[gnu::packed]] MciSablinkPerfStopV1 {
  WIRE_GAP(0, 8);
  u32 samples;  // 8
  WIRE_GAP(12, 16);
  u64 selector;  // 16, in, link and session
  WIRE_GAP(24, 28);
};
MCI_RECORD(MciSablinkPerfStopV1, 38, 1, 28);

inline void fillRequest(MciSablinkPerfStopV1& request, const QuerySablinkPerfDataParam& param) {
  request.selector = selectorOf(param.link, param.sessionId);
}
inline SablinkPerfStop readReply(const MciSablinkPerfStopV1& reply) {
  return {.samples = reply.samples};
}

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

inline void fillRequest(MciGetSablinkSerdesStatusV1& request, const QuerySablinkStateParam& param) {
  request.laneCount = std::size(request.rows);
  request.link = param.link;
}
inline SablinkSerdesStatus readReply(const MciGetSablinkSerdesStatusV1& reply) {
  auto status = std::bit_cast<SablinkSerdesStatus>(reply);
  status.laneCount = std::min(status.laneCount, static_cast<u32>(status.lanes.size()));
  return status;
}

}  // namespace kelp::linux_
