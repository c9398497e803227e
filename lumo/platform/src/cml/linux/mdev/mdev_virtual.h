#pragma once

#include "linux/mdev/mdev_base.h"
#include "linux/mdev/mdev_type.h"

namespace kelp::linux_ {

/// One vGPU, as the mediated device framework shows it on the host.
class MdevVirtual : public MdevBase {
 public:
  MdevVirtual() = default;
  explicit MdevVirtual(const std::string& uuid);

  std::string getUuid() const { return std::string(getName()); }
  /// Number of the vGPU, unique on its GPU.
  Stated<unsigned int> readVgpuId() const;
  /// Process of the virtual machine that uses the vGPU, 0 while none does.
  Stated<unsigned int> readVmPid() const;
  Stated<MdevType> findType() const;
};

}  // namespace kelp::linux_
