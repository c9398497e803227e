#include "tor1/tor1_internal_feat_obj.h"

#include "objects/queries.h"

namespace kelp {

Stated<unsigned int> Tor1InternalFeatObj::queryUnitsOfCore(unsigned int coreId) const {
  const Stated<std::vector<unsigned int>> units =
      fieldOf(model().exec(QueryGpuCapCmd()), &GpuSpec::unitsPerCore);
  if (!units.ok()) {
    return units.state();
  }
  if (coreId >= units.value().size()) {
    return KelpReturn::kNotSupported;
  }
  return units.value()[coreId];
}

}  // namespace kelp
