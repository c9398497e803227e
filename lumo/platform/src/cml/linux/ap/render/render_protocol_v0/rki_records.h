#pragma once

#include "linux/ap/mki_access.h"
#include "linux/ap/mki_list.h"

// Records of the render node: the video engine's interface list and its one query, with a reply per
// operation. A core that is absent or off has all bits set in its rows.

namespace kelp::linux_ {

constexpr std::size_t kVpuMostCores = 16;
constexpr std::size_t kVpuMostInstances = 36;
constexpr std::size_t kVpuMostInstancesV2 = 32;

struct [[gnu::packed]] RkiMkisList : MkiMkisList {};
MKI_RECORD(RkiMkisList, 0xC148648C);

enum class VpuOperation : u32 {
  kUtilization = 0,
  kSessionMetrics = 1,
  kSessionStates = 2,
  kClock = 3,
  kCoreProperties = 4,
};

/// Request and reply in one; versions 0 and 1 of the interfaces.
struct [[gnu::packed]] RkiGetVpuInfoV0 {
  u16 operation;  // 0, in
  u16 coreId;     // 2, in
  u32 instance;   // 4, in
  u8 reply[152];  // 8
};
MKI_RECORD(RkiGetVpuInfoV0, 0xC0A0648A);

struct [[gnu::packed]] RkiGetVpuInfoV1 : RkiGetVpuInfoV0 {};
MKI_RECORD(RkiGetVpuInfoV1, 0xC0A0648A);

/// A request that points to the caller's reply buffer; versions 2 and 3 of the interfaces.
struct [[gnu::packed]] RkiGetVpuInfoV2 {
  u32 operation;     // 0
  u32 replySize;     // 4
  u64 replyAddress;  // 8
  u32 coreId;        // 16
  u32 instance;      // 20
  u32 vgpuId;        // 24
  u32 vgpuValid;     // 28, 1: only that vGPU's sessions count
  WIRE_GAP(32, 40);
};
MKI_RECORD(RkiGetVpuInfoV2, 0xC028648A);

struct [[gnu::packed]] VpuCoreBusy {
  u32 percent;  // 0
};
struct [[gnu::packed]] VpuUtilReply {
  VpuCoreBusy cores[kVpuMostCores];  // 0
};

struct [[gnu::packed]] VpuSsMetricsReply {
  u32 status;     // 0, above 1: the driver failed to tell
  u32 pid;        // 4
  u32 codec;      // 8
  u32 hRes;       // 12
  u32 vRes;       // 16
  u32 fps;        // 20
  u32 bitrate;    // 24
  u32 sessionId;  // 28
  WIRE_GAP(32, 36);
};

struct [[gnu::packed]] VpuInstanceState {
  u32 state;  // 0
};
/// Version 2 of the session states alone.
struct [[gnu::packed]] VpuSsStatesReplyV2 {
  u32 count;                                        // 0
  VpuInstanceState instances[kVpuMostInstancesV2];  // 4
};
/// All their other versions.
struct [[gnu::packed]] VpuSsStatesReplyV3 {
  u32 coreId;                                     // 0
  u32 count;                                      // 4
  VpuInstanceState instances[kVpuMostInstances];  // 8
};

struct [[gnu::packed]] VpuCoreClock {
  u32 hertz;  // 0
  WIRE_GAP(4, 8);
};
struct [[gnu::packed]] VpuClockReply {
  VpuCoreClock cores[kVpuMostCores];  // 0
};

struct [[gnu::packed]] VpuCoreSpec {
  u8 kind;           // 0
  u8 threadCount;    // 1
  u16 maxInstances;  // 2
  u32 maxClock;      // 4, hertz
};
struct [[gnu::packed]] VpuSpecReply {
  u32 coreCount;                     // 0
  VpuCoreSpec cores[kVpuMostCores];  // 4
};

}  // namespace kelp::linux_
