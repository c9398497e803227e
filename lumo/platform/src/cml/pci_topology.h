#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kelp_return.h"
#include "topology_values.h"

namespace kelp {

/// How far apart two PCI functions are, from sysfs alone; each must be a GPU or a network adapter, else
/// state 6. State 1 for a text that is no PCI address and for a function that cannot be read.
Stated<TopologyLevel> getPciDeviceTopology(std::string_view sbdfA, std::string_view sbdfB);

/// PCI addresses of the host's InfiniBand adapters of the one make that is known, in the order of the
/// folder; empty on a host without.
Stated<std::vector<std::string>> getPciNicDevicesSbdf();

}  // namespace kelp
