#pragma once

#include <cstdint>
#include <vector>

#include "linux/mdev/mdev_base.h"
#include "linux/mdev/mdev_type.h"
#include "linux/mdev/mdev_virtual.h"

namespace kelp::linux_ {

/// One GPU that can carry vGPUs, by its PCI address as sysfs spells it. A GPU that the framework does not
/// list, and every GPU of a host without the framework, has neither types nor vGPUs; state 1 when it is
/// listed and a folder cannot be walked.
class MdevPhysical : public MdevBase {
 public:
  explicit MdevPhysical(const std::string& sbdf);

  /// The types that the GPU offers, by ascending number.
  Stated<std::vector<MdevType>> listTypes() const;
  /// The vGPUs that exist on the GPU, ascending.
  Stated<std::vector<std::string>> listUuids() const;

  /// The type of an id; state 7 when the GPU does not offer it.
  Stated<MdevType> findType(std::string_view id) const;
  /// The vGPU of a number; state 7 when there is none.
  /// @param knownUuid where to look first, which saves the search; may be empty
  Stated<MdevVirtual> findVirtual(std::uint64_t vgpuId, const std::string& knownUuid = {}) const;

 private:
  bool isListed() const;
  /// Whether a vGPU is one of this GPU.
  bool carries(const std::string& uuid) const;
};

}  // namespace kelp::linux_
