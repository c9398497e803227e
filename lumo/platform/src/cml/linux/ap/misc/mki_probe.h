#pragma once

#include "linux/ap/wire.h"

namespace kelp::linux_ {

/// Probe of drivers that speak protocol 1.
struct [[gnu::packed]] MkiQueryProbeV1 {
  u16 currentMajor;  // 0
  u16 currentMinor;  // 2
  u16 oldMajor;      // 4
  u16 oldMinor;      // 6
  WIRE_GAP(8, 12);
};
constexpr u32 kMkiQueryProbeV1Request = 0xC00C4DAE;

/// Probe of drivers that speak protocol 0; the render node has it under a number of its own.
struct [[gnu::packed]] MkiQueryProbeV0 {
  u16 major;           // 0
  u16 minor;           // 2
  u32 interfaceCount;  // 4
  WIRE_GAP(8, 16);
};
constexpr u32 kMkiQueryProbeV0Request = 0xC0104DB0;
constexpr u32 kRkiQueryProbeV0Request = 0xC010648B;

}  // namespace kelp::linux_
