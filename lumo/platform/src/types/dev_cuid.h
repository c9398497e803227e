#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kelp {

/// What a device is to the platform. The front end numbers device types in its own way.
enum class DevType : std::uint32_t {
  kUnknown = 0,
  kPhysical = 1,
  kMpcParent = 2,
  kMpcInstance = 3,
  kMediated = 4,
  kGuest = 5,
};

/// The chip family: the high byte of the PCI device id.
enum class DevArch : std::uint32_t {
  kUnknown = 0,
  kWold = 1,
  kFen1 = 2,
  kFen2 = 3,
  kTor1 = 4,
};

/// Identity of a device, and its key everywhere. `intId` is N of the node "ovgpu.N", or the vGPU id
/// of a mediated device; `sbdf` is packed as pci_sbdf.h says.
struct DevCuid {
  DevType type = DevType::kUnknown;
  DevArch arch = DevArch::kUnknown;
  std::uint64_t sbdf = 0;
  std::uint64_t intId = 0;

  friend bool operator==(const DevCuid&, const DevCuid&) = default;
};

/// "0000:41:00.0-FEN2-MPCI-int2", for log lines.
std::string toText(const DevCuid& cuid);

}  // namespace kelp

template <>
struct std::hash<kelp::DevCuid> {
  std::size_t operator()(const kelp::DevCuid& cuid) const noexcept {
    const auto kind = static_cast<std::uint32_t>(cuid.type) + static_cast<std::uint32_t>(cuid.arch);
    return static_cast<std::size_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(kind))) +
           static_cast<std::size_t>(cuid.sbdf) + static_cast<std::size_t>(cuid.intId);
  }
};
