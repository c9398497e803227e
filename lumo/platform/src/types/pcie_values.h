#pragma once

#include <cstdint>
#include <string>

#include "kelp_return.h"

namespace kelp {

/// PCI facts of one function. From sysfs every field is valid; from the driver's configuration space
/// bus width and BAR memory are not, nor, without a PCI Express capability, widths and generations.
struct PcieInfo {
  Stated<unsigned int> vendorId;
  Stated<unsigned int> deviceId;
  Stated<unsigned int> subsystemVendorId;
  Stated<unsigned int> subsystemDeviceId;
  Stated<float> maxLinkSpeed;         ///< GT/s
  Stated<float> curLinkSpeed;         ///< GT/s
  Stated<unsigned int> maxLinkWidth;  ///< lanes
  Stated<unsigned int> curLinkWidth;  ///< lanes
  Stated<unsigned short> busWidth;    ///< sum of the address widths of the counted BARs, bits
  Stated<unsigned long> barMemory;    ///< sum of their sizes, bytes
  Stated<unsigned int> maxLinkGen;
  Stated<unsigned int> curLinkGen;
  Stated<unsigned int> revisionId;
};

/// The slot that a board sits in.
struct PcieSlotInfo {
  unsigned int number = 0;
  std::string name;
};

/// The third memory window of a function, in bytes.
struct PcieBar2MemInfo {
  unsigned long total = 0;
  unsigned long used = 0;
  unsigned long free = 0;
};

/// Traffic of a measurement.
struct PcieBandWidthData {
  unsigned long rxBytes = 0;  ///< since the start
  unsigned long txBytes = 0;
  unsigned long rxRate = 0;  ///< bytes/s over the last interval
  unsigned long txRate = 0;
  unsigned int state = 0;      ///< 1 running, 0 stopped by the driver
  Stated<unsigned int> rxMin;  ///< MB/s, as all that follow
  Stated<unsigned int> rxMean;
  Stated<unsigned int> rxMax;
  Stated<unsigned int> txMin;
  Stated<unsigned int> txMean;
  Stated<unsigned int> txMax;
  Stated<unsigned int> samples;  ///< intervals since the start
};

struct StartPciePerfParam {
  unsigned int interval = 0;  ///< milliseconds
};

struct QueryPciePerfDataParam {
  unsigned int sessionId = 0;
};

struct StopPciePerfParam {
  unsigned int sessionId = 0;
};

}  // namespace kelp
