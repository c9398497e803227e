#include "linux/mdev.h"

#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <string_view>

#include "kelp_log.h"
#include "linux/fs_helper.h"
#include "linux/paths.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

/// Name of the folder that holds the folder which a link leads to; empty for a link that leads nowhere.
std::string resolveParentName(const std::string& link) {
  char target[PATH_MAX];
  if (::realpath(link.c_str(), target) == nullptr) {
    return {};
  }
  std::string_view folder = target;
  folder = folder.substr(0, folder.rfind('/'));
  return std::string(folder.substr(folder.rfind('/') + 1));
}

}  // namespace

Stated<std::uint64_t> MdevVirtual::readVgpuId() const {
  const std::string path = std::string(kMediatedDevicesFolder) + "/" + uuid_ + kVgpuIdFile;
  std::string text;
  if (FsHelper::read(path, text) > 0) {
    if (const auto id = rusk::parseNumber<std::uint64_t>(rusk::trim(text))) {
      return *id;
    }
  }
  KELP_LOG(kError) << "Failed to read vgpu id from " << path;
  return KelpReturn::kReadFailed;
}

Stated<std::vector<MdevVirtual>> MdevPhysical::listVirtual() const {
  struct stat status {};
  if (::stat((kMediatedParentsFolder + sbdf_).c_str(), &status) != 0) {
    return std::vector<MdevVirtual>{};
  }
  std::vector<MdevVirtual> devices;
  const std::string folder = kMediatedDevicesFolder;
  const int result = FsHelper::iterEntries(
      folder,
      [&](const dirent& entry) {
        if (resolveParentName(folder + "/" + entry.d_name) == sbdf_) {
          devices.emplace_back(entry.d_name);
        }
        return true;
      },
      kDirectories | kLinks);
  if (result != 0) {
    return KelpReturn::kFailure;
  }
  return devices;
}

}  // namespace kelp::linux_
