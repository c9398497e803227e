#include "linux/model_enumerator.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "kelp_log.h"
#include "linux/entry_names.h"
#include "linux/fs_helper.h"
#include "linux/mdev/mdev_physical.h"
#include "linux/paths.h"
#include "pci_sbdf.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

std::string functionFolder(const std::string& sbdf) {
  return std::string(kPciDriverFolder) + "/" + sbdf;
}

/// Names of a prefix and a number, by ascending number. A name whose number is beyond 64 bits is none.
/// The result is that of the walk.
int searchNumbered(const std::string& path, const char* prefix, std::vector<std::string>& out, int mask) {
  std::vector<std::pair<std::uint64_t, std::string>> found;
  const int result = FsHelper::iterEntries(
      path,
      [&](const dirent& entry) {
        if (const auto number = numberBehind(prefix, entry.d_name)) {
          found.emplace_back(*number, entry.d_name);
        }
        return true;
      },
      mask);
  std::ranges::sort(found);
  for (auto& [number, name] : found) {
    out.push_back(std::move(name));
  }
  return result;
}

}  // namespace

ModelEnumerator::ModelEnumerator(std::shared_ptr<EnvironmentBase> environment)
    : environment_(std::move(environment)) {}

Stated<DevArch> ModelEnumerator::getPcieDevArch(const std::string& sbdf) {
  std::string text;
  if (const std::int64_t size = FsHelper::read(functionFolder(sbdf) + "/device", text); size <= 0) {
    KELP_LOG(kError) << "Fail to read device id for sbdf:" << sbdf << ", ret = " << size;
    return KelpReturn::kFailure;
  }
  // The PCI core writes this file itself: without a number in it nothing here can be trusted, so the
  // exception is left to end the process.
  const auto deviceId = static_cast<unsigned>(std::stoi(text, nullptr, 16));
  const unsigned arch = (deviceId >> 8) & 0xFF;
  if (arch < static_cast<unsigned>(DevArch::kWold) || arch > static_cast<unsigned>(DevArch::kTor1)) {
    KELP_LOG(kError) << "Unknown arch" << arch << " for sbdf:" << sbdf;
    return KelpReturn::kFailure;
  }
  return static_cast<DevArch>(arch);
}

Stated<DevCuid> ModelEnumerator::genFunctionCuid(DevType type, const std::string& sbdf) {
  const Stated<DevArch> arch = getPcieDevArch(sbdf);
  if (!arch.ok()) {
    KELP_LOG(kError) << "Failed to get arch for device - " << sbdf;
    return arch.state();
  }
  const std::uint64_t packed = pciSbdfToUint64(sbdf);
  if (packed == 0) {
    KELP_LOG(kError) << "Incorrect sbdf - " << sbdf;
    return KelpReturn::kFailure;
  }
  return DevCuid{.type = type, .arch = arch.value(), .sbdf = packed};
}

Stated<DevCuid> ModelEnumerator::genDevCuid(const Stated<DevCuid>& function, const std::string& miscName) {
  if (!function.ok()) {
    return function;
  }
  const auto number = numberBehind(kMiscPrefix, miscName);
  if (!number) {
    return KelpReturn::kFailure;
  }
  DevCuid cuid = function.value();
  cuid.intId = *number;
  return cuid;
}

Stated<DevCuid> ModelEnumerator::genVirtCuid(const Stated<DevCuid>& function, const std::string& uuid) {
  if (!function.ok()) {
    return function;
  }
  const Stated<unsigned int> vgpuId = MdevVirtual(uuid).readVgpuId();
  if (!vgpuId.ok()) {
    KELP_LOG(kError) << "Failed to get vgpuid for uuid - " << uuid;
    return vgpuId.state();
  }
  DevCuid cuid = function.value();
  cuid.intId = vgpuId.value();
  return cuid;
}

Stated<ModelEnumerator::Names> ModelEnumerator::getDevNamesCommon(const std::string& path, int mask) {
  Names names;
  if (const int result = searchNumbered(path, kMiscPrefix, names, mask); result != 0) {
    KELP_LOG(kError) << "Fail to list misc names under the path:" << path << ", ret = " << result;
    return KelpReturn::kFailure;
  }
  return names;
}

void ModelEnumerator::getDeviceNameFromProc(std::set<std::string>& out) {
  Names folders;
  if (const int result = searchNumbered(kDriverProcFolder, kProcGpuPrefix, folders, kDirectories);
      result != 0) {
    KELP_LOG(kError) << "Failed to get device name from proc, error = " << result;
    return;
  }
  for (const std::string& folder : folders) {
    const std::string path = kDriverProcFolder + folder + kProcDeviceName;
    std::string text;
    if (FsHelper::read(path, text) < 0) {
      KELP_LOG(kError) << "read from " << path << " failed";
      return;
    }
    KELP_LOG(kInfo) << "read from " << path << " content " << text;
    out.emplace(rusk::trim(text));
  }
}

Stated<ModelEnumerator::Names> ModelEnumerator::getPcieDevMiscNames(const std::string& sbdf,
                                                                    ProcNames& procNames) {
  struct stat status {};
  if (::lstat((functionFolder(sbdf) + kPhysicalFunction).c_str(), &status) == 0) {
    return KelpReturn::kNotSupported;
  }
  Stated<Names> listed = getDevNamesCommon(functionFolder(sbdf) + kMiscFolder, kDirectories);
  if (!listed.ok() || listed.value().size() < 2) {
    return listed;
  }
  if (!procNames) {
    getDeviceNameFromProc(procNames.emplace());
  }
  if (procNames->empty()) {
    return KelpReturn::kFailure;
  }
  Names names = listed.take();
  const auto own = std::ranges::find_if(names, [&](const auto& name) { return procNames->contains(name); });
  if (own == names.end()) {
    KELP_LOG(kError) << "miscNames can not match device name from proc";
    return KelpReturn::kFailure;
  }
  std::iter_swap(names.begin(), own);
  return names;
}

Stated<ModelEnumerator::Names> ModelEnumerator::getPcieDevMiscNames(const std::string& sbdf) {
  ProcNames procNames;
  return getPcieDevMiscNames(sbdf, procNames);
}

Stated<DevCuidSet> ModelEnumerator::enumeratePcie() {
  const Stated<Names> nodes = getDevNamesCommon(kDeviceFolder, kOthers);
  if (!nodes.ok()) {
    return nodes.state();
  }
  if (nodes.value().empty()) {
    KELP_LOG(kError) << "Failed to get misc names from path:" << kDeviceFolder;
    return DevCuidSet{};
  }
  const std::set<std::string_view> nodeNames(nodes.value().begin(), nodes.value().end());

  Names sbdfs;
  const std::string driverFolder = kPciDriverFolder;
  if (FsHelper::searchEntries(driverFolder, isPciAddress, sbdfs, kLinks | kDirectories | kSorted) != 0) {
    if (const int error = errno; error != ENOENT) {
      KELP_LOG(kError) << "Failed to get pcie device sbdfs, error = " << error;
      return KelpReturn::kFailure;
    }
    KELP_LOG(kError) << "OV GPU driver not loaded";
    return KelpReturn::kDriverNotLoaded;
  }
  KELP_LOG(kInfo) << "Number of detected pcie devices : " << sbdfs.size();

  const Stated<DriverMode> mode = environment_->getDriverMode();
  if (mode.ok()) {
    KELP_LOG(kInfo) << "driver mode is " << mode.value();
  }
  const bool isGuest = mode.ok() && mode.value() == DriverMode::kGuest;

  DevCuidSet cuids;
  ProcNames procNames;
  for (const std::string& sbdf : sbdfs) {
    const Stated<Names> names = getPcieDevMiscNames(sbdf, procNames);
    if (names.state() == KelpReturn::kNotSupported) {
      KELP_LOG(kWarn) << "device sbdf " << sbdf << " is virtual device created by sr-iov";
      continue;
    }
    if (!names.ok() || names.value().empty()) {
      KELP_LOG(kError) << "Error when getting misc names for pcie device" << sbdf;
      return KelpReturn::kFailure;
    }
    const std::string& miscName = names.value().front();
    if (!nodeNames.contains(miscName)) {
      // A container that was given some nodes sees those GPUs alone.
      continue;
    }
    const DevType hostType = names.value().size() > 1 ? DevType::kMpcParent : DevType::kPhysical;
    const DevType type = isGuest ? DevType::kGuest : hostType;
    const Stated<DevCuid> cuid = genDevCuid(genFunctionCuid(type, sbdf), miscName);
    if (!cuid.ok()) {
      KELP_LOG(kError) << "Failed to generate cuid for pcie device - " << sbdf;
      return cuid.state();
    }
    cuids.insert(cuid.value());
    KELP_LOG(kInfo) << "Pcie device : " << sbdf;
  }
  return cuids;
}

Stated<DevCuid> ModelEnumerator::enumeratePcie(const std::string& sbdf) {
  const Stated<Names> names = getPcieDevMiscNames(sbdf);
  if (!names.ok() || names.value().empty()) {
    KELP_LOG(kError) << "Error when getting misc names for " << sbdf;
    return KelpReturn::kFailure;
  }
  const DevType type = names.value().size() < 2 ? DevType::kPhysical : DevType::kMpcParent;
  Stated<DevCuid> cuid = genDevCuid(genFunctionCuid(type, sbdf), names.value().front());
  if (!cuid.ok()) {
    KELP_LOG(kError) << "Failed to generate cuid for pcie device - " << sbdf;
  }
  return cuid;
}

Stated<DevCuidSet> ModelEnumerator::enumerateMpci(const std::string& sbdf) {
  const Stated<Names> listed = getPcieDevMiscNames(sbdf);
  if (!listed.ok()) {
    KELP_LOG(kError) << "Failed to get misc names for pcie device" << sbdf;
    return listed.state();
  }
  const Names& names = listed.value();
  DevCuidSet cuids;
  if (names.size() < 2) {
    KELP_LOG(kError) << "Pcie device " << sbdf << " has no instance device. It's not an MPC parent device.";
    return cuids;
  }
  KELP_LOG(kInfo) << "Number of detected mpc instance devices under " << sbdf << " : " << names.size() - 1;
  const Stated<DevCuid> function = genFunctionCuid(DevType::kMpcInstance, sbdf);
  for (auto name = names.begin() + 1; name != names.end(); ++name) {
    const Stated<DevCuid> cuid = genDevCuid(function, *name);
    if (!cuid.ok()) {
      KELP_LOG(kError) << "Failed to generate cuid for MPC instance device - " << *name;
      return cuid.state();
    }
    cuids.insert(cuid.value());
    KELP_LOG(kInfo) << "Mpci device under " << sbdf << " : " << *name;
  }
  return cuids;
}

Stated<std::vector<std::string>> ModelEnumerator::listMediated(const std::string& sbdf) {
  return MdevPhysical(sbdf).listUuids();
}

std::string ModelEnumerator::getKnownUuid(const DevCuid& cuid) const {
  const std::lock_guard lock(mutex_);
  const auto found = knownUuids_.find(cuid);
  return found == knownUuids_.end() ? std::string() : found->second;
}

Stated<DevCuidSet> ModelEnumerator::enumerateVirt(const std::string& sbdf) {
  const Stated<std::vector<std::string>> uuids = listMediated(sbdf);
  if (!uuids.ok()) {
    KELP_LOG(kError) << "Failed to list active mdev devices for pcie sbdf " << sbdf
                     << ", state = " << uuids.state();
    return uuids.state();
  }
  KELP_LOG(kInfo) << "Number of detected virtual devices under " << sbdf << " : " << uuids.value().size();
  DevCuidSet cuids;
  if (uuids.value().empty()) {
    return cuids;
  }
  const Stated<DevCuid> function = genFunctionCuid(DevType::kMediated, sbdf);
  for (const std::string& uuid : uuids.value()) {
    const Stated<DevCuid> cuid = genVirtCuid(function, uuid);
    if (!cuid.ok()) {
      KELP_LOG(kError) << "Failed to generate cuid for virtual device " << uuid << " under " << sbdf;
      return cuid.state();
    }
    cuids.insert(cuid.value());
    {
      const std::lock_guard lock(mutex_);
      knownUuids_.insert_or_assign(cuid.value(), uuid);
    }
    KELP_LOG(kInfo) << "Virtual device under " << sbdf << " : " << uuid;
  }
  return cuids;
}

}  // namespace kelp::linux_
