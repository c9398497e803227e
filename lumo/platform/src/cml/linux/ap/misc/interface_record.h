#pragma once

#include <algorithm>
#include <concepts>
#include <limits>

#include "linux/ap/wire.h"

namespace kelp::linux_ {

/// The interface that a record serves, and in which version; set by the record's line.
template <class Record>
inline constexpr int kInterfaceOf = -1;
template <class Record>
inline constexpr u32 kVersionOf = 0;

/// A record of an interface, whatever the protocol and the version. What such records have in common
/// is filled and read by the driver's names of the fields, once for all of them.
template <class Record, int Interface>
concept RecordOf = (kInterfaceOf<Record> == Interface);

/// INTERFACE_RECORD(record, interface, version): part of a protocol's record line.
#define INTERFACE_RECORD(Record, interfaceName, interfaceVersion) \
  template <>                                                     \
  inline constexpr int kInterfaceOf<Record> = interfaceName;      \
  template <>                                                     \
  inline constexpr u32 kVersionOf<Record> = interfaceVersion

/// A number in a field that may be narrower: what does not fit becomes the field's highest, so that it
/// never turns into another's number.
template <class Field>
constexpr Field saturated(u64 number) {
  return static_cast<Field>(std::min<u64>(number, std::numeric_limits<Field>::max()));
}

/// A figure that the driver counts in thousandths.
constexpr float ofThousandths(std::integral auto count) {
  return static_cast<float>(count) / 1000.0F;
}

/// Two numbers in the driver's one 64-bit field.
constexpr u64 selectorOf(u32 low, u32 high) {
  return u64{low} | (u64{high} << 32);
}

}  // namespace kelp::linux_
