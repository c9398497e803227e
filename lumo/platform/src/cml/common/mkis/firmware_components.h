#pragma once

#include <array>

namespace kelp {

/// Firmware components that a device may report, in the driver's order. Records deliver the first six.
constexpr std::array<const char*, 11> kFirmwareComponents{
    "ov-bios", "rtos", "vbios", "var", "mgbl", "entry", "errlog", "sab-link", "fec", "GPU", "NIC"};

}  // namespace kelp
