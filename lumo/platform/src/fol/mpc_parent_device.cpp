#include "mpc_parent_device.h"

#include <algorithm>

#include "kelp_log.h"
#include "model_manager.h"
#include "pci_sbdf.h"

namespace kelp {

Stated<std::vector<DevCuid>> MpcParentDevice::getMpcInstCuids() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  const std::string sbdf = sbdfText(getCuid().sbdf);
  const Stated<DevCuidSet> found = modelManager().getEnumerator().enumerateMpci(sbdf);
  if (!found.ok()) {
    KELP_LOG(kError) << "Failed to list mpc instance cuids for pcie device : " << sbdf;
    return found.state();
  }
  if (found.value().empty()) {
    KELP_LOG(kError) << sbdf << " has no instance device. It's not an MPC parent device.";
  }
  std::vector<DevCuid> cuids(found.value().begin(), found.value().end());
  std::ranges::sort(cuids, {}, &DevCuid::intId);
  return cuids;
}

}  // namespace kelp
