#include "linux/access_os.h"

#include <sys/stat.h>

#include "kelp_log.h"
#include "linux/fs_helper.h"
#include "linux/paths.h"
#include "rusk/text.h"

namespace kelp::linux_ {

std::string AccessOs::getPciBdfFromSysfs(const std::string& miscName) {
  // The point before the function stands for any character. // sic
  static const NameTest& isAddress = *new NameTest(
      FsHelper::expression("^[0-9a-fA-F]{4,8}:[0-9a-fA-F]{2}:[0-9a-fA-F]{2}.[0-9a-fA-F]{1}$", true));
  const NameTest isMiscName = FsHelper::expression("^" + miscName + "$", true);
  const std::string folder = std::string(kPciDriverFolder) + "/";
  std::string sbdf;
  const NameTest hasMiscName = [&](const char* name) {
    return isAddress(name) && FsHelper::hasEntry(folder + name + kMiscFolder, isMiscName, kDirectories);
  };
  // A failed walk has no address either.
  static_cast<void>(FsHelper::searchEntry(kPciDriverFolder, hasMiscName, sbdf, kOthers | kLinks));
  return sbdf;
}

Stated<std::string> AccessOs::getDrmDevPath(const std::string& sbdf, const std::string& prefix) {
  const std::string folder = std::string(kPciDriverFolder) + "/" + sbdf + kDrmFolder;
  std::string name;
  const int result =
      FsHelper::searchEntry(folder, FsHelper::expression(prefix + "[0-9]+", true), name, kDirectories);
  if (result != 0 || name.empty()) {
    return KelpReturn::kFailure;
  }
  return std::string(kDrmDeviceFolder) + "/" + name;
}

Stated<DevDesc> AccessOs::getDeviceDescFromOs(const std::string& miscName) {
  if (miscName.find('.') == std::string::npos) {
    KELP_LOG(kError) << miscName << " format is not ovgpu.x";
    return KelpReturn::kFailure;
  }
  DevDesc desc;
  desc.sbdf = getPciBdfFromSysfs(miscName);
  if (desc.sbdf.empty()) {
    return KelpReturn::kFailure;
  }
  desc.kmdFlagA = false;
  desc.kmdFlagB = false;
  desc.miscPath = std::string(kDeviceFolder) + "/" + miscName;
  desc.cardPath = getDrmDevPath(desc.sbdf, kCardPrefix);
  if (!desc.cardPath.ok()) {
    return KelpReturn::kFailure;
  }
  desc.renderPath = getDrmDevPath(desc.sbdf, kRenderPrefix);
  if (!desc.renderPath.ok()) {
    return KelpReturn::kFailure;
  }
  return desc;
}

Stated<bool> AccessOs::isVpuEnable() {
  std::string text;
  if (FsHelper::read(kDisableVpuFile, text) < 0) {
    KELP_LOG(kError) << "read from " << kDisableVpuFile << " failed";
    return KelpReturn::kReadFailed;
  }
  KELP_LOG(kInfo) << kDisableVpu << " parameter read from file value is " << text;
  if (rusk::trim(text) != "0") {
    return false;
  }
  struct stat status {};
  return ::stat(kVideoDriverFolder, &status) == 0;
}

}  // namespace kelp::linux_
