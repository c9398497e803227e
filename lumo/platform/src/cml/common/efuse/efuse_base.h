#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "board_values.h"
#include "common/efuse/efuse_layout.h"

namespace kelp {

/// The value of one field.
struct EfuseFieldBits {
  int bitOffset = -1;  ///< -1 when there is no value
  unsigned int width = 0;
  std::vector<std::uint64_t> words;  ///< lowest bits first
};

/// Bits of a chip as the driver delivered them, and the layout that gives them a meaning. A local value
/// of whoever decodes them; the bits are not trusted.
class EfuseBase {
 public:
  explicit EfuseBase(const EfuseData& data, std::unique_ptr<const EfuseLayout> layout = nullptr);
  virtual ~EfuseBase();

  EfuseBase(const EfuseBase&) = delete;
  EfuseBase& operator=(const EfuseBase&) = delete;

  /// State 6 for a field that the chip does not have; 1 for one outside the data, and without a layout.
  Stated<EfuseFieldBits> getField(unsigned int fieldId) const;

  /// A field of up to 64 bits. A failure goes to `state`, and nothing is read once that is a failure, so
  /// that a row of fields needs one look at the state at its end.
  std::uint64_t getValue(unsigned int fieldId, KelpReturn& state) const;

  /// The PCI device id that is burnt in; state 6 when what is burnt in means none.
  virtual Stated<unsigned int> getDeviceId() const;

 private:
  unsigned int startBit_;
  unsigned int bitCount_;
  std::vector<std::uint32_t> words_;
  std::unique_ptr<const EfuseLayout> layout_;
};

}  // namespace kelp
