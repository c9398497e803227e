#include "mpc_instance_device.h"

#include <algorithm>

#include "core_model.h"
#include "kelp_log.h"
#include "model_manager.h"

namespace kelp {

Stated<DevCuid> MpcInstanceDevice::getMpcParentCuid() const {
  if (!isInitialized()) {
    return KelpReturn::kNotInitialized;
  }
  const Stated<unsigned long> parentSbdf = model().exec(QueryMpcParentCmd());
  if (!parentSbdf.ok()) {
    return parentSbdf.state();
  }
  const Stated<DevCuidSet> cuids = modelManager().getEnumerator().enumeratePcie();
  if (!cuids.ok()) {
    KELP_LOG(kError) << "Failed to list pcie device";
    return cuids.state();
  }
  const auto parent = std::ranges::find(cuids.value(), parentSbdf.value(), &DevCuid::sbdf);
  if (parent == cuids.value().end()) {
    KELP_LOG(kError) << "Mpc parent not found for : " << toText(getCuid());
    return KelpReturn::kNotFound;
  }
  return *parent;
}

}  // namespace kelp
