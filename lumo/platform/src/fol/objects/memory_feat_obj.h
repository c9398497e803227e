#pragma once

#include "memory_values.h"
#include "objects/feat_obj.h"

namespace kelp {

/// The memory of a device. What is built in is read once, by the constructor; a read that failed is
/// kept as a state.
class MemoryFeatObj : public FeatObj<MemoryFeatObj> {
 public:
  explicit MemoryFeatObj(const std::shared_ptr<CoreModel>& model);

  /// Bytes.
  virtual Stated<unsigned long> queryTotal() const;
  /// Bytes: what the driver itself counts or what its regions sum up to, whichever is larger.
  virtual Stated<unsigned long> queryUsed() const;
  /// Bits: channels times the width of one.
  virtual Stated<unsigned int> getBusWidth() const;

 private:
  Stated<unsigned int> channelCount_;
  Stated<unsigned int> channelWidth_;
};

}  // namespace kelp
