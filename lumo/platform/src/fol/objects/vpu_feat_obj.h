#pragma once

#include <cstddef>
#include <vector>

#include "kelp_return.h"
#include "objects/feat_obj.h"
#include "vpu_values.h"

namespace kelp {

/// The video engine. Its cores are read once, by the constructor; a read that failed is kept as a
/// state.
class VpuFeatObj : public FeatObj<VpuFeatObj> {
 public:
  explicit VpuFeatObj(const std::shared_ptr<CoreModel>& model);

  Stated<unsigned int> getCoreCount() const;
  /// State 6 past the last core.
  Stated<VpuCoreSpecData> getCoreSpec(std::size_t core) const;
  /// Percent, one per core; a core that is off has state 6.
  Stated<std::vector<Stated<float>>> queryUtilization() const;
  /// Hertz, one per core.
  Stated<std::vector<Stated<unsigned int>>> queryFrequency() const;
  /// Per core, per instance.
  Stated<std::vector<std::vector<Stated<VpuSsInstState>>>> querySessionStates() const;
  Stated<VpuSsMetrics> querySessionMetrics(const QueryVpuSsMetricsParam& param) const;

 private:
  Stated<std::vector<VpuCoreSpecData>> cores_;
};

}  // namespace kelp
