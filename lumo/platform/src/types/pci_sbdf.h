#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelp {

/// A packed PCI address: domain in bits 32 to 63, bus in 16 to 23, device in 8 to 15, function in 0 to 7.
std::uint64_t packSbdf(std::uint32_t domain, std::uint32_t bus, std::uint32_t device, std::uint32_t function);

constexpr std::uint32_t sbdfDomain(std::uint64_t sbdf) { return static_cast<std::uint32_t>(sbdf >> 32); }
constexpr std::uint32_t sbdfBus(std::uint64_t sbdf) { return static_cast<std::uint32_t>(sbdf >> 16) & 0xFF; }
constexpr std::uint32_t sbdfDevice(std::uint64_t sbdf) { return static_cast<std::uint32_t>(sbdf >> 8) & 0xFF; }
constexpr std::uint32_t sbdfFunction(std::uint64_t sbdf) { return static_cast<std::uint32_t>(sbdf) & 0xFF; }

/// The address as sysfs spells it: at least four digits of domain, lower case, "0000:41:00.0".
std::string sbdfText(std::uint64_t sbdf);

/// Packs a text of four hexadecimal numbers parted by colons or points. A text of another form is
/// logged and gives 0, which no GPU has: 0000:00:00.0 is the host bridge.
std::uint64_t pciSbdfToUint64(std::string_view text);

}  // namespace kelp
