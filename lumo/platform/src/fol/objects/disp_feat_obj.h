#pragma once

#include <vector>

#include "disp_values.h"
#include "kelp_return.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The display interfaces of a device. They are read once, by the constructor; a read that failed is
/// kept as a state.
class DispFeatObj : public FeatObj<DispFeatObj> {
 public:
  explicit DispFeatObj(const std::shared_ptr<CoreModel>& model);

  virtual Stated<unsigned int> getInterfaceCount() const;
  /// State 6 past the last interface. A refresh rate that cannot be estimated keeps state 6.
  virtual Stated<DispIntfSpec> getInterfaceSpec(std::size_t index) const;

 private:
  Stated<DispIntfSpec> dispRaw2Spec(const DispInterfaceInfo& row) const;
  Stated<float> estimateMaxRefreshRate(unsigned int pixelClock, unsigned int horizontal,
                                       unsigned int vertical) const;

  Stated<std::vector<DispInterfaceInfo>> interfaces_;
};

}  // namespace kelp
