#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// What stands in the place of a value that a device does not give.
inline constexpr const char* kNoValue = "N/A";

inline constexpr unsigned long long kMib = 1ull << 20;

/// Whole mebibytes, such as "1024MiB".
std::string mibText(unsigned long long bytes);

/// Such as "Virtual".
const char* deviceTypeText(DeviceType type);

/// The wall clock, such as "Thu Nov 20 17:40:12 2025".
std::string timestampText();

/// Local time, such as "2025/11/20 17:40:12".
std::string localTimeText(std::time_t seconds);

/// The same with milliseconds, such as "2025/11/20 17:40:12.042".
std::string localTimeMsText(std::chrono::system_clock::time_point time);

/// The number of a chip's architecture is the high byte of its PCI device id.
constexpr unsigned architectureOf(std::uint32_t pciDeviceId) {
  return pciDeviceId >> 8 & 0xff;
}

/// First architecture with inline ECC.
inline constexpr unsigned kEccArchitecture = 4;

std::optional<std::uint32_t> performanceState(const LumoAccessDevice& device);

/// Whether a device went from one performance state to another between two readings. What was gathered
/// in between then belongs to neither and has to be gathered again.
inline bool hasChanged(const std::optional<std::uint32_t>& before,
                       const std::optional<std::uint32_t>& after) {
  return before && after && *before != *after;
}

}  // namespace tolk
