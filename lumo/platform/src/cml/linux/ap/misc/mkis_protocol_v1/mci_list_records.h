#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

namespace kelp::linux_ {

/// Asks how many interfaces the driver lists. The three counters behind the count are only logged.
struct [[gnu::packed]] MkisScanPduHeaderPv1 {
  MciHeader header;
  u16 listEntryCount;    // 24
  u16 deviceEventTypes;  // 26
  u16 miscNodes;         // 28
  u16 renderNodes;       // 30
  WIRE_GAP(32, 48);
};

struct [[gnu::packed]] MciListEntry {
  u16 name;       // 0
  u8 maxVersion;  // 2
  u8 minVersion;  // 3
  WIRE_GAP(4, 12);
};

/// Head of the list record; the entries follow.
struct [[gnu::packed]] MciListHead {
  MciHeader header;
  u16 listEntryCount;  // 24
  WIRE_GAP(26, 36);
};

/// Entries that the record has room for at least; a driver with more is given more.
constexpr std::size_t kMciListMinEntries = 100;

}  // namespace kelp::linux_
