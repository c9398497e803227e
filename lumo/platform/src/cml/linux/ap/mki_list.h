#pragma once

#include <functional>

#include "common/mkis/mkis_intf.h"
#include "linux/ap/wire.h"

namespace kelp::linux_ {

struct [[gnu::packed]] MkiMkisListEntry {
  u32 name;     // 0
  u32 version;  // 4
  WIRE_GAP(8, 16);
};

constexpr u32 kMkisListPage = 20;

/// One page of the interface list of protocol 0; misc and render node have the same.
struct [[gnu::packed]] MkiMkisList {
  u32 start;                                // 0, index of the first entry wanted
  u32 count;                                // 4, in: the page's size, out: entries delivered
  MkiMkisListEntry entries[kMkisListPage];  // 8
};

/// Fetches the driver's list page by page. `send` exchanges one page and answers whether it worked.
/// Fails with kFailure when a page fails, delivers more than it holds, or brings nothing new.
MkisStated<RemoteList> fetchMkisList(u32 interfaceCount, const std::function<bool(MkiMkisList&)>& send);

}  // namespace kelp::linux_
