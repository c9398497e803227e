#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Names of entries that every start of the library looks for. They are told apart by hand: compiling an
// expression for each costs more than walking the folders.

namespace kelp::linux_ {

/// The number of a name that is the prefix and decimal digits, "ovgpu.2"; nothing for another name and
/// for a number beyond 64 bits.
std::optional<std::uint64_t> numberBehind(std::string_view prefix, std::string_view name);

/// Whether a name has the form of a PCI address: alphanumeric characters, four to eight, ":", two, ":",
/// two, ".", one.
bool isPciAddress(std::string_view name);

/// The same with hexadecimal digits alone.
bool isHexPciAddress(std::string_view name);

}  // namespace kelp::linux_
