#pragma once

#include <cstdint>
#include <string>

#include "kelp_return.h"
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
  /// Bytes of system memory that the device may use.
  virtual Stated<unsigned long> querySystemTotal() const;
  /// Bytes set aside for vGPUs.
  virtual Stated<unsigned long> queryGuestReserved() const;
  /// Hertz.
  virtual Stated<unsigned long> queryClock() const;
  /// Hertz.
  virtual Stated<unsigned long> getMaxClock() const;
  /// Bits: channels times the width of one.
  virtual Stated<unsigned int> getBusWidth() const;
  /// GB/s, from speed and bus width.
  virtual Stated<unsigned int> queryBandwidth() const;
  /// Transfers, in MT/s, from the memory clock.
  virtual Stated<unsigned int> querySpeed() const;
  virtual Stated<std::string> getVendor() const;
  /// 0 LPDDR4, 1 GDDR6.
  virtual Stated<unsigned int> getMemoryType() const;
  virtual Stated<MemoryEdc> queryEdcCounters() const;
  /// Pages taken out of use.
  virtual Stated<unsigned int> queryRetiredPages() const;

 private:
  Stated<MemorySpec> spec_;
};

}  // namespace kelp
