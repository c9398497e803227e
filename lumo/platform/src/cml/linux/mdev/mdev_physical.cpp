#include "linux/mdev/mdev_physical.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <tuple>

#include "linux/paths.h"

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

/// Ids are numbers without leading zeros: of two the longer one is the larger.
auto orderOf(const MdevType& type) {
  return std::tuple(type.getId().size(), type.getId());
}

}  // namespace

MdevPhysical::MdevPhysical(const std::string& sbdf)
    : MdevBase(std::string(kMediatedParentsFolder) + "/" + sbdf) {}

bool MdevPhysical::isListed() const {
  struct stat status {};
  return ::stat(getPath().c_str(), &status) == 0;
}

Stated<std::vector<MdevType>> MdevPhysical::listTypes() const {
  std::vector<MdevType> types;
  if (!isListed()) {
    return types;
  }
  const std::string folder = getPath() + kMediatedTypesFolder;
  const int result = iterEntries(folder, [&](const char* name) {
    if (MdevType type(folder + "/" + name); !type.getId().empty()) {
      types.push_back(std::move(type));
    }
  });
  if (result != 0) {
    return KelpReturn::kFailure;
  }
  std::ranges::sort(types, {}, orderOf);
  return types;
}

Stated<std::vector<std::string>> MdevPhysical::listUuids() const {
  std::vector<std::string> uuids;
  if (!isListed()) {
    return uuids;
  }
  const std::string folder = std::string(kMediatedDevicesFolder) + "/";
  const int result = iterEntries(kMediatedDevicesFolder, [&](const char* name) {
    if (resolveParentName(folder + name) == getName()) {
      uuids.emplace_back(name);
    }
  });
  if (result != 0) {
    return KelpReturn::kFailure;
  }
  std::ranges::sort(uuids);
  return uuids;
}

Stated<MdevType> MdevPhysical::findType(std::string_view id) const {
  const auto types = listTypes();
  if (!types.ok()) {
    return types.state();
  }
  const auto found = std::ranges::find(types.value(), id, &MdevType::getId);
  if (found == types.value().end()) {
    return KelpReturn::kNotFound;
  }
  return *found;
}

Stated<MdevVirtual> MdevPhysical::findVirtual(std::uint64_t vgpuId) const {
  const auto uuids = listUuids();
  if (!uuids.ok()) {
    return uuids.state();
  }
  for (const std::string& uuid : uuids.value()) {
    const MdevVirtual device(uuid);
    if (const auto id = device.readVgpuId(); id.ok() && id.value() == vgpuId) {
      return device;
    }
  }
  return KelpReturn::kNotFound;
}

}  // namespace kelp::linux_
