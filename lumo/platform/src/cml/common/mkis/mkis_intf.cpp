#include "common/mkis/mkis_intf.h"

#include <algorithm>

#include "kelp_log.h"

namespace kelp {

MkisStated<std::uint32_t> versionStrategy(const VersionRange& local, const VersionRange& remote) {
  if (local.max < remote.min) {
    KELP_LOG(kInfo) << "remote too new. local max version is " << local.max << " remote mkis min version is "
                    << remote.min;
    return MkisError::kRemoteTooNew;
  }
  if (local.min > remote.max) {
    KELP_LOG(kInfo) << "remote too old. local min version is " << local.min << " remote mkis max version is "
                    << remote.max;
    return MkisError::kRemoteTooOld;
  }
  return std::min(local.max, remote.max);
}

}  // namespace kelp
