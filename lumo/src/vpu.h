#pragma once

#include <array>
#include <vector>

#include "component.h"
#include "device.h"
#include "vpu_values.h"

namespace lumo {

/// The video engine of a device. Its constructor sorts the cores by kind.
class Vpu : public Component<unsigned int, Device> {
 public:
  Vpu(unsigned int index, const std::shared_ptr<Device>& owner);

  /// Ids of the cores of one kind, in ascending order.
  const std::vector<unsigned int>& getCoreIds(kelp::VpuCoreKind kind) const {
    return coreIds_.at(static_cast<std::size_t>(kind));
  }

 private:
  std::array<std::vector<unsigned int>, 3> coreIds_;
};

}  // namespace lumo
