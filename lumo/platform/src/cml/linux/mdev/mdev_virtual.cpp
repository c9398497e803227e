#include "linux/mdev/mdev_virtual.h"

#include <climits>
#include <cstdlib>

#include "kelp_log.h"
#include "linux/paths.h"

namespace kelp::linux_ {

MdevVirtual::MdevVirtual(const std::string& uuid)
    : MdevBase(std::string(kMediatedDevicesFolder) + "/" + uuid) {}

Stated<unsigned int> MdevVirtual::readVgpuId() const {
  return readNumber(kVgpuIdFile, "Failed to read vgpu id from ");
}

Stated<unsigned int> MdevVirtual::readVmPid() const {
  return readNumber(kVmPidFile, "Failed to read vm pid from ");
}

Stated<MdevType> MdevVirtual::findType() const {
  const std::string link = getPath() + kMediatedTypeLink;
  char target[PATH_MAX];
  if (::realpath(link.c_str(), target) != nullptr) {
    if (MdevType type(target); !type.getId().empty()) {
      return type;
    }
  }
  KELP_LOG(kError) << "Failed to read vgpu type from " << link;
  return KelpReturn::kReadFailed;
}

}  // namespace kelp::linux_
