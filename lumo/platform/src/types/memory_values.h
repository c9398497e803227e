#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "kelp_return.h"

namespace kelp {

/// Memory of a device, in bytes.
struct MemoryUsage {
  Stated<unsigned long> total;                  ///< size of the memory
  Stated<unsigned long> used;                   ///< what the driver itself counts as used
  std::array<Stated<unsigned long>, 4> region;  ///< used by processes, driver, firmware, scan-out
  Stated<unsigned long> systemTotal;            ///< system memory the device may use
  Stated<unsigned long> guestReserved;          ///< set aside for vGPUs
};

/// GPU memory that one process holds, in bytes.
struct ProcessMemoryUsage {
  unsigned long gpuMemory = 0;
  unsigned long systemMemory = 0;
  std::uint32_t kind = 0;  ///< 0 graphics, 1 compute
  std::uint32_t pid = 0;
};
using ProcessMemoryMap = std::map<std::uint32_t, ProcessMemoryUsage>;

/// The memory that is built in.
struct MemorySpec {
  Stated<unsigned long> maxClock;  ///< hertz
  Stated<unsigned int> type;       ///< 0 LPDDR4, 1 GDDR6
  Stated<std::string> vendor;
  Stated<unsigned int> channelCount;
  Stated<unsigned int> channelWidth;  ///< bits
  Stated<unsigned int> size;          ///< MiB, with older drivers alone
};

/// Errors that the memory's error detection met, over all channels.
struct MemoryEdc {
  std::uint32_t readErrors = 0;
  std::uint32_t writeErrors = 0;
  std::uint32_t readRetries = 0;
  std::uint32_t writeRetries = 0;
};

}  // namespace kelp
