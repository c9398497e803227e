#pragma once

#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"

// What the firmware tells of a board, in its own layout.

namespace kelp::linux_ {

struct [[gnu::packed]] BoardHead {
  u32 version;       // 0
  u32 memSizeIndex;  // 4
  u32 ddrFreqType;   // 8
  u8 memType;        // 12
  u8 memVendor;      // 13
  u8 channelCount;   // 14, 0 unknown
  u8 channelWidth;   // 15, bits, 0 unknown
  u8 coreCount;      // 16
  u8 unitsPerCore;   // 17, of every core
  u16 gpuMaxClock;   // 18, megahertz, 0 unknown
  u8 clusterCount;   // 20
  WIRE_GAP(21, 22);
  u16 dispCount;  // 22, display rows
};

/// All ones for a figure that is not available.
struct [[gnu::packed]] BoardDisplayRow {
  u32 type;        // 0
  u32 hRes;        // 4, pixels
  u32 vRes;        // 8, pixels
  u32 pixelClock;  // 12, units of 100 kHz
};

/// The data as a whole, which the firmware leaves in a shared buffer.
struct [[gnu::packed]] BoardData {
  BoardHead head;           // 0
  BoardDisplayRow rows[8];  // 24
  char boardName[64];       // 152
  WIRE_GAP(216, 616);
};

/// The data of the last family, whose driver has a record for them.
struct [[gnu::packed]] MkiGetBoardCfgCapV2 {
  BoardHead head;           // 0
  BoardDisplayRow rows[5];  // 24
};
MKI_RECORD(MkiGetBoardCfgCapV2, 0x80684DAC);

}  // namespace kelp::linux_
