#include "tor1/tor1_gpu_feat_obj.h"

#include <algorithm>

#include "objects/queries.h"

namespace kelp {

Stated<unsigned int> Tor1GpuFeatObj::queryUnitsOfCores(std::uint64_t coreMask) const {
  const Stated<std::vector<unsigned int>> units =
      fieldOf(model().exec(QueryGpuCapCmd()), &GpuSpec::unitsPerCore);
  if (!units.ok()) {
    return units.state();
  }
  constexpr std::size_t kMaskBits = 64;
  unsigned int sum = 0;
  for (std::size_t core = 0; core < std::min(units.value().size(), kMaskBits); ++core) {
    sum += (coreMask >> core & 1U) != 0 ? units.value()[core] : 0;
  }
  return sum;
}

Stated<ThermalSlowdownStatistics> Tor1GpuFeatObj::queryThermalSlowdown() const {
  return execFor({DevType::kPhysical}, model(), QueryThermalSlowdownStatisticsCmd());
}

std::span<const std::uint32_t> Tor1GpuFeatObj::getSensorIds() const {
  // Sensor 0 is what the driver itself takes for the GPU's temperature.
  static constexpr std::uint32_t kSensors[] = {0};
  return kSensors;
}

}  // namespace kelp
