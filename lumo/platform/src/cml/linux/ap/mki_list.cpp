#include "linux/ap/mki_list.h"

#include <algorithm>

#include "kelp_log.h"

namespace kelp::linux_ {
namespace {

// A driver has some dozens; the bound keeps one that claims billions from filling the memory.
constexpr u32 kMostInterfaces = 65535;

}  // namespace

MkisStated<RemoteList> fetchMkisList(u32 interfaceCount, const std::function<bool(MkiMkisList&)>& send) {
  KELP_LOG(kDebug) << "Fetching mkis list from kmd !";
  const u32 wanted = std::min(interfaceCount, kMostInterfaces);
  RemoteList list;
  while (list.size() < wanted) {
    MkiMkisList page{};
    page.start = static_cast<u32>(list.size());
    page.count = kMkisListPage;
    if (!send(page)) {
      return MkisError::kFailure;
    }
    if (page.count > kMkisListPage) {
      KELP_LOG(kError) << "mkis list entry number overflow !";
      return MkisError::kFailure;
    }
    const std::size_t before = list.size();
    for (u32 i = 0; i < page.count; ++i) {
      const u32 version = page.entries[i].version;
      list.emplace(static_cast<int>(page.entries[i].name), VersionRange{version, version});
    }
    if (list.size() == before) {
      KELP_LOG(kError) << "Dead lock detected !!!";
      return MkisError::kFailure;
    }
  }
  KELP_LOG(kInfo) << "Got mkis list entries number: " << list.size();
  for (const auto& [name, range] : list) {
    KELP_LOG(kDebug) << "mkis ent: { " << name << range.min;
  }
  return list;
}

}  // namespace kelp::linux_
