#pragma once

#include <cstddef>
#include <vector>

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

 private:
  Stated<std::vector<VpuCoreSpecData>> cores_;
};

}  // namespace kelp
