#include <sys/stat.h>

#include <climits>
#include <cstdlib>

#include "kelp_log.h"
#include "linux/fs_helper.h"
#include "linux/paths.h"
#include "pci_topology.h"
#include "rusk/text.h"

namespace kelp {
namespace {

constexpr std::string_view kAdapterPrefix = "mlx";

/// Address of the function that an adapter's link leads to, ".../0000:81:00.0/infiniband/mlx5_0"; empty
/// when it leads nowhere.
std::string resolveAdapter(const std::string& link) {
  constexpr std::size_t kPartsFromEnd = 3;
  char target[PATH_MAX];
  if (::realpath(link.c_str(), target) == nullptr) {
    KELP_LOG(kError) << "realpath " << link << " failed";
    return {};
  }
  const auto parts = rusk::split(target, '/');
  if (parts.size() < kPartsFromEnd || parts[parts.size() - kPartsFromEnd].empty()) {
    KELP_LOG(kError) << "Mellanox nic card path error";
    return {};
  }
  return parts[parts.size() - kPartsFromEnd];
}

}  // namespace

Stated<std::vector<std::string>> getPciNicDevicesSbdf() {
  const std::string folder = linux_::kInfinibandFolder;
  std::vector<std::string> sbdfs;
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) {
    KELP_LOG(kInfo) << "query mellanox " << folder << " not exit";  // sic
    return sbdfs;
  }
  bool allResolved = true;
  const int result = linux_::FsHelper::iterEntries(
      folder,
      [&](const dirent& entry) {
        if (!std::string_view(entry.d_name).starts_with(kAdapterPrefix)) {
          return true;
        }
        std::string sbdf = resolveAdapter(folder + entry.d_name);
        allResolved = !sbdf.empty();
        sbdfs.push_back(std::move(sbdf));
        return allResolved;
      },
      linux_::kLinks);
  if (result != 0) {
    KELP_LOG(kError) << "opendir " << folder << " failed";
  }
  if (result != 0 || !allResolved) {
    return KelpReturn::kFailure;
  }
  return sbdfs;
}

}  // namespace kelp
