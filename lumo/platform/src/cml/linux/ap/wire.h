#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "kelp_return.h"

// Parts of the fixed layouts that are exchanged with the kernel driver, all little-endian as the
// machines are on which it runs.

namespace kelp::linux_ {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using s32 = std::int32_t;

/// Reserved bytes of a record, from one offset to before another.
#define WIRE_GAP(from, to) ::kelp::linux_::u8 gap##from##_[(to) - (from)]

/// A field that may say "not available" by having all its bits set.
template <class Value, class Field>
Stated<Value> unlessAllOnes(Field field) {
  static_assert(std::is_unsigned_v<Field>);
  if (field == std::numeric_limits<Field>::max()) {
    return KelpReturn::kNotSupported;
  }
  return static_cast<Value>(field);
}

/// A field that may say "unknown" by being 0.
template <class Value, class Field>
Stated<Value> unlessZero(Field field) {
  if (field == 0) {
    return KelpReturn::kNotSupported;
  }
  return static_cast<Value>(field);
}

/// The text in a fixed field: it ends at the first NUL or with the field.
template <std::size_t N>
std::string textOf(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

/// A count that the driver reports, cut to the rows that its record holds.
template <class Count, class Row, std::size_t N>
constexpr std::size_t rowsOf(Count count, const Row (&)[N]) {
  return std::min<std::size_t>(static_cast<std::size_t>(count), N);
}

}  // namespace kelp::linux_
