#include "linux/mdev/mdev_physical.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <tuple>

#include "linux/paths.h"

namespace kelp::linux_ {
namespace {

/// Whether a link leads to a folder inside a folder of the name. A host has a link for each vGPU of all its
/// GPUs, so the link alone is read: following each of them folder by folder would take several times as long.
bool leadsInto(const std::string& link, std::string_view name) {
  char target[PATH_MAX];
  const ssize_t size = ::readlink(link.c_str(), target, sizeof target);
  if (size <= 0) {
    return false;
  }
  std::string_view folder(target, static_cast<std::size_t>(size));
  folder = folder.substr(0, folder.rfind('/'));
  return folder.substr(folder.rfind('/') + 1) == name;
}

bool exists(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0;
}

/// Ids are numbers without leading zeros: of two the longer one is the larger.
auto orderOf(const MdevType& type) {
  return std::tuple(type.getId().size(), type.getId());
}

}  // namespace

MdevPhysical::MdevPhysical(const std::string& sbdf)
    : MdevBase(std::string(kMediatedParentsFolder) + "/" + sbdf) {}

bool MdevPhysical::isListed() const {
  return exists(getPath());
}

bool MdevPhysical::carries(const std::string& uuid) const {
  const std::string link = std::string(kMediatedDevicesFolder) + "/" + uuid;
  return leadsInto(link, getName()) && exists(link);
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
  const int result = iterEntries(kMediatedDevicesFolder, [&](const char* name) {
    if (carries(name)) {
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

Stated<MdevVirtual> MdevPhysical::findVirtual(std::uint64_t vgpuId, const std::string& knownUuid) const {
  const auto isOne = [vgpuId](const MdevVirtual& device) {
    const auto id = device.readVgpuId();
    return id.ok() && id.value() == vgpuId;
  };
  if (!knownUuid.empty() && carries(knownUuid)) {
    if (const MdevVirtual device(knownUuid); isOne(device)) {
      return device;
    }
  }
  const auto uuids = listUuids();
  if (!uuids.ok()) {
    return uuids.state();
  }
  for (const std::string& uuid : uuids.value()) {
    if (const MdevVirtual device(uuid); uuid != knownUuid && isOne(device)) {
      return device;
    }
  }
  return KelpReturn::kNotFound;
}

}  // namespace kelp::linux_
