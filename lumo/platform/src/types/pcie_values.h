#pragma once

#include <cstdint>

#include "kelp_return.h"

namespace kelp {

/// PCI facts of one function. From sysfs every field is valid; from the driver's configuration space
/// bus width and BAR memory are not, nor, without a PCI Express capability, widths and generations.
struct PcieInfo {
  Stated<unsigned int> vendorId;
  Stated<unsigned int> deviceId;
  Stated<unsigned int> subsystemVendorId;
  Stated<unsigned int> subsystemDeviceId;
  Stated<float> maxLinkSpeed;  ///< GT/s
  Stated<float> curLinkSpeed;  ///< GT/s
  Stated<unsigned int> maxLinkWidth;  ///< lanes
  Stated<unsigned int> curLinkWidth;  ///< lanes
  Stated<unsigned short> busWidth;    ///< sum of the address widths of the counted BARs, bits
  Stated<unsigned long> barMemory;    ///< sum of their sizes, bytes
  Stated<unsigned int> maxLinkGen;
  Stated<unsigned int> curLinkGen;
  Stated<unsigned int> revisionId;
};

}  // namespace kelp
