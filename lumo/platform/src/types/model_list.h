#pragma once

#include <cstdint>

#include "dev_cuid.h"

namespace kelp {

/// One PCI device id and the model that is sold under it.
struct ModelRow {
  std::uint16_t deviceId;
  const char* name;
  DevArch arch;
};

/// The row of a PCI device id, or null. An id whose low eight bits are all set stands for every id of
/// its family that has no row of its own; whoever wants that row asks for it.
const ModelRow* findModel(unsigned int deviceId);

}  // namespace kelp
