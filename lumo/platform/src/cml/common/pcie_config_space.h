#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "pcie_values.h"

namespace kelp {

/// Lanes of a width field of the link registers. What is no width is logged and gives 0, and so below.
unsigned int bitValueToWidth(unsigned int value);
/// Generation of a speed code.
unsigned int bitValueToGen(unsigned int value);
/// Gigatransfers per second of a speed code. Code 7 is a generation but no speed.
float bitValueToSpeed(unsigned int value);

/// A copy of a function's configuration space as the driver delivers it. Its content is not trusted: no
/// pointer in it leads outside the copy.
class PcieConfigSpace {
 public:
  /// Bytes behind those given read as 0.
  explicit PcieConfigSpace(std::span<const std::uint8_t> bytes);

  /// What the header and the PCI Express capability tell. Bus width and BAR memory are not in it and have
  /// state 6; without the capability widths and generations have it too, and both speeds are 0.
  PcieInfo decode() const;

 private:
  static constexpr std::size_t kSize = 264;

  /// Offset of the PCI Express capability, 0 without it.
  std::size_t findExpressCapability() const;
  unsigned int getWord(std::size_t offset) const { return bytes_[offset] | (bytes_[offset + 1] << 8); }

  std::array<std::uint8_t, kSize> bytes_{};
};

}  // namespace kelp
