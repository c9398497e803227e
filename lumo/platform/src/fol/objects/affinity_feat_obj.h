#pragma once

#include <string>

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "topology_values.h"

namespace kelp {

/// Which CPUs and which memory are near to a device, as sysfs spells it.
class AffinityFeatObj : public FeatObj<AffinityFeatObj> {
 public:
  explicit AffinityFeatObj(const std::shared_ptr<CoreModel>& model) : FeatObj(model) {}

  /// Number of the NUMA node, "-1" on a machine without.
  virtual Stated<std::string> readMemoryAffinity() const;
  /// Ranges of CPU numbers, such as "0-15,32-47".
  virtual Stated<std::string> readCpuList() const;
  /// The same as hexadecimal words of 32 bits, joined by commas.
  virtual Stated<std::string> readCpuBitmask() const;

 private:
  Stated<std::string> read(AffinityType type) const;
};

}  // namespace kelp
