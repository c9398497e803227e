#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"
#include "linux/ap/misc/pcie_exchange.h"

// The PCI side of a device: its function, its slot, its traffic and its way to a peer.

namespace kelp::linux_ {

/// The function's configuration space; the tool's copy ends before the reserved bytes.
struct [[gnu::packed]] MciGetPciConfigSpaceV1 {
  u8 configSpace[264];  // 0
  WIRE_GAP(264, 272);
};
MCI_RECORD(MciGetPciConfigSpaceV1, 6, 1, 272);

struct [[gnu::packed]] MciGetP2pStatusV1 {
  u32 peer;        // 0, in, misc number
  u32 capability;  // 4, in, 0 read, 1 write
  u32 status;      // 8
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetP2pStatusV1, 7, 1, 28);

struct [[gnu::packed]] MciPciePerStartV2 {
  u32 interval;        // 0, in, milliseconds
  u32 sessionId;       // 4
  u32 actualInterval;  // 8, milliseconds
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciPciePerStartV2, 26, 2, 28);

struct [[gnu::packed]] MciPciePerReadV2 {
  WIRE_GAP(0, 4);
  u32 sessionId;  // 4, in
  u64 rxBytes;    // 8
  u64 txBytes;    // 16
  u64 rxRate;     // 24, bytes/s
  u64 txRate;     // 32
  u32 state;      // 40, 1 running
  WIRE_GAP(44, 52);
  u32 rxMin;   // 52, MB/s
  u32 rxMean;  // 56
  u32 rxMax;   // 60
  u32 txMin;   // 64
  u32 txMean;  // 68
  u32 txMax;   // 72
  WIRE_GAP(76, 92);
  u32 samples;  // 92
  WIRE_GAP(96, 112);
};
MCI_RECORD(MciPciePerReadV2, 27, 2, 112);

struct [[gnu::packed]] MciPciePerStopV1 {
  u32 sessionId;  // 0, in
  u32 samples;    // 4
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciPciePerStopV1, 28, 1, 24);

struct [[gnu::packed]] MciGetPciSlotInfoV1 {
  u32 slotNumber;     // 0
  char slotName[40];  // 4
  WIRE_GAP(44, 60);
};
MCI_RECORD(MciGetPciSlotInfoV1, 31, 1, 60);

struct [[gnu::packed]] MciPcieReplayCounterV1 {
  u64 replays;  // 0, since boot
  WIRE_GAP(8, 32);
};
MCI_RECORD(MciPcieReplayCounterV1, 35, 1, 32);

/// Bytes.
struct [[gnu::packed]] MciQueryPcieBar2MemInfoV0 {
  u64 total;  // 0
  u64 used;   // 8
  u64 free;   // 16
  WIRE_GAP(24, 56);
};
MCI_RECORD(MciQueryPcieBar2MemInfoV0, 74, 0, 56);

inline PcieBar2MemInfo readReply(const MciQueryPcieBar2MemInfoV0& reply) {
  return {.total = reply.total, .used = reply.used, .free = reply.free};
}

}  // namespace kelp::linux_
