#pragma once

#include <limits>

namespace lumo {

/// A measured value without its fraction; the nearest number there is for one that does not fit, 0 for
/// none at all.
template <class Whole>
Whole truncated(float value) {
  constexpr auto kLeast = static_cast<float>(std::numeric_limits<Whole>::min());
  constexpr auto kMost = static_cast<float>(std::numeric_limits<Whole>::max());
  if (!(value > kLeast)) {
    return value <= kLeast ? std::numeric_limits<Whole>::min() : Whole{0};
  }
  return value >= kMost ? std::numeric_limits<Whole>::max() : static_cast<Whole>(value);
}

inline constexpr unsigned long kHertzPerMegahertz = 1'000'000;

/// The driver counts hertz, callers count megahertz.
inline unsigned int megahertz(unsigned long hertz) {
  return static_cast<unsigned int>(hertz / kHertzPerMegahertz);
}

}  // namespace lumo
