#pragma once

#include "linux/ap/misc/memory_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// What the GPU that carries a vGPU knows of it. A vGPU is named by its number on that GPU.

namespace kelp::linux_ {

struct [[gnu::packed]] MciGetVgpuUtilV1 {
  u32 vgpuId;       // 0, in
  u32 utilization;  // 4, percent
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetVgpuUtilV1, 33, 1, 24);

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MciGetVgpuMemInfoV1 {
  u32 vgpuId;  // 0, in
  u64 total;   // 4
  u64 used;    // 12
  WIRE_GAP(20, 36);
};
MCI_RECORD(MciGetVgpuMemInfoV1, 34, 1, 36);

struct [[gnu::packed]] MciMkisVgpuOverCommitInfoV0 {
  u32 vgpuId;        // 0, in
  u32 enabled;       // 4
  u32 systemMemory;  // 8, MiB
  WIRE_GAP(12, 44);
};
MCI_RECORD(MciMkisVgpuOverCommitInfoV0, 75, 0, 44);

inline void fillRequest(MciMkisVgpuOverCommitInfoV0& request, unsigned int vgpuId) {
  request.vgpuId = vgpuId;
}
inline VgpuOverCommitInfo readReply(const MciMkisVgpuOverCommitInfoV0& reply) {
  return {.enabled = reply.enabled, .systemMemory = reply.systemMemory};
}

}  // namespace kelp::linux_
