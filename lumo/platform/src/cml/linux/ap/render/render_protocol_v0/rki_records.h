#pragma once

#include "linux/ap/mki_access.h"
#include "linux/ap/mki_list.h"

// Records of the render node: the video engine's interface list and its one query.

namespace kelp::linux_ {

constexpr std::size_t kVpuMostCores = 16;

struct [[gnu::packed]] RkiMkisList : MkiMkisList {};
MKI_RECORD(RkiMkisList, 0xC148648C);

enum class VpuOperation : u32 { kSpecification = 4 };

/// Request and reply in one; versions 0 and 1 of the interfaces.
struct [[gnu::packed]] RkiGetVpuInfoV1 {
  u16 operation;  // 0, in
  u16 coreId;     // 2, in
  u32 instance;   // 4, in
  u8 reply[152];  // 8
};
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
