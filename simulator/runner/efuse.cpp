#include "efuse.h"

namespace {

using Words = std::array<uint32_t, kEfuseWords>;

// `first` counts from the beginning of the window.
void putBits(Words& words, unsigned first, unsigned width, uint64_t value) {
  for (unsigned i = 0; i < width; ++i) {
    const unsigned bit = first + i;
    if (value >> i & 1) words[bit / 32] |= 1u << bit % 32;
  }
}

struct Place {
  unsigned first;
  unsigned width;
};

// Fields 0 to 3, counted from bit 0 of the chip.
constexpr Place kWoldChip[] = {{256, 42}, {298, 12}, {310, 5}, {315, 5}};
constexpr Place kFenChip[] = {{2272, 42}, {2314, 12}, {2326, 5}, {2331, 5}};

}  // namespace

Words makeEfuse(Family family, uint16_t deviceId, const std::array<uint64_t, 4>& fields) {
  Words words{};
  if (family == Family::kTor1) return words;
  const bool isWold = family == Family::kWold;
  const unsigned start = traitsOf(family).efuseStartBit;
  for (size_t i = 0; i < fields.size(); ++i) {
    const Place place = isWold ? kWoldChip[i] : kFenChip[i];
    putBits(words, place.first - start, place.width, fields[i]);
  }
  if (isWold) {
    putBits(words, 340, 1, deviceId & 1);         // field 5
    putBits(words, 348, 3, deviceId >> 1 & 0x7);  // field 4
  } else {
    putBits(words, 2496 - start, 8, deviceId & 0xFF);  // field 6, chosen by field 8 being 0
    putBits(words, 2517 - start, 11, static_cast<uint64_t>(deviceId >> 8) << 3);  // field 9
  }
  return words;
}
