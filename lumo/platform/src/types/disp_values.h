#pragma once

#include <cstdint>

#include "kelp_return.h"

namespace kelp {

enum class DispIntfType : std::uint32_t { kDp = 0, kEdp = 1, kVga = 2, kHdmi = 3, kLvds = 4, kOther = 5 };

/// A display interface as the driver states it.
struct DispInterfaceInfo {
  DispIntfType type = DispIntfType::kDp;
  Stated<unsigned int> hRes;        ///< pixels
  Stated<unsigned int> vRes;        ///< pixels
  Stated<unsigned int> pixelClock;  ///< units of 100 kHz
};

/// A display interface as it is reported, at its largest.
struct DispIntfSpec {
  Stated<DispIntfType> type;
  Stated<unsigned int> maxHRes;        ///< pixels
  Stated<unsigned int> maxVRes;        ///< pixels
  Stated<unsigned int> maxPixelClock;  ///< units of 100 kHz
  Stated<float> maxRefreshRate;        ///< hertz
};

}  // namespace kelp
