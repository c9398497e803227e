#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kelp_return.h"

namespace kelp::linux_ {

/// One vGPU, as the mediated device framework shows it on the host. Holds its name alone; each call
/// reads afresh.
class MdevVirtual {
 public:
  explicit MdevVirtual(std::string uuid) : uuid_(std::move(uuid)) {}

  const std::string& getUuid() const { return uuid_; }
  /// Number of the vGPU, unique on its GPU. State 8 when the file has none.
  Stated<std::uint64_t> readVgpuId() const;

 private:
  std::string uuid_;
};

/// One GPU that can carry vGPUs, by its PCI address as sysfs spells it. Holds the address alone; each
/// call reads afresh.
class MdevPhysical {
 public:
  explicit MdevPhysical(std::string sbdf) : sbdf_(std::move(sbdf)) {}

  /// The vGPUs that exist on this GPU, in the order of the framework's folder. A GPU that is no parent
  /// has none; state 1 when the folder cannot be walked.
  Stated<std::vector<MdevVirtual>> listVirtual() const;

 private:
  std::string sbdf_;
};

}  // namespace kelp::linux_
