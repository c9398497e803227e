#pragma once

#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"
#include "linux/ap/misc/pcie_exchange.h"

// The PCI side of a device: its function, its slot, its traffic and its way to a peer.

namespace kelp::linux_ {

struct [[gnu::packed]] MkiGetPciConfigSpaceV0 {
  u8 configSpace[264];  // 0
};
MKI_CALL(MkiGetPciConfigSpaceV0, 6, 0, 0x81084DA9);

struct [[gnu::packed]] MkiGetP2pStatusV0 {
  u32 peer;        // 0, in, misc number
  u32 capability;  // 4, in, 0 read, 1 write
  u32 status;      // 8
  WIRE_GAP(12, 48);
};
MKI_CALL(MkiGetP2pStatusV0, 7, 0, 0x80304DAB);

struct [[gnu::packed]] MkiPciePerStartV0 {
  u32 interval;   // 0, in, milliseconds
  u32 sessionId;  // 4
};
MKI_CALL(MkiPciePerStartV0, 26, 0, 0xC0084DC0);

struct [[gnu::packed]] MkiPciePerStartV1 {
  u32 interval;        // 0, in, milliseconds
  u32 sessionId;       // 4
  u32 actualInterval;  // 8, milliseconds
};
MKI_CALL(MkiPciePerStartV1, 26, 1, 0xC00C4DC0);

struct [[gnu::packed]] MkiPciePerReadV0 {
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
};
MKI_CALL(MkiPciePerReadV0, 27, 0, 0xC0404DC1);

struct [[gnu::packed]] MkiPciePerReadV1 {
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
  WIRE_GAP(96, 104);
};
MKI_CALL(MkiPciePerReadV1, 27, 1, 0xC0684DC1);

struct [[gnu::packed]] MkiPciePerStopV0 {
  u32 sessionId;  // 0, in
  u32 samples;    // 4
};
MKI_CALL(MkiPciePerStopV0, 28, 0, 0xC0084DC2);

struct [[gnu::packed]] MkiGetPciSlotInfoV0 {
  u32 slotNumber;     // 0
  char slotName[40];  // 4
  WIRE_GAP(44, 64);
};
MKI_CALL(MkiGetPciSlotInfoV0, 31, 0, 0x80404DAA);

struct [[gnu::packed]] MkiPcieReplayCounterV0 {
  u64 replays;  // 0, since boot
  WIRE_GAP(8, 32);
};
MKI_CALL(MkiPcieReplayCounterV0, 35, 0, 0x80204DE0);

}  // namespace kelp::linux_
