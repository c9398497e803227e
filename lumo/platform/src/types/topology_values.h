#pragma once

#include <cstdint>

namespace kelp {

/// How far apart two PCI functions are.
enum class TopologyLevel : std::int32_t {
  kSame = -1,
  kInternal = 0,        ///< the two halves of one card
  kSingleBridge = 1,    ///< at most one switch or bridge between them
  kMultipleBridges = 2,
  kHostBridge = 3,
  kNode = 4,    ///< different root complexes of one NUMA node
  kSystem = 5,  ///< across NUMA nodes
};

enum class P2pCapStatus : std::uint32_t { kOk = 0, kChipsetNotSupported = 1, kGpuNotSupported = 2 };

struct QueryP2pStatusParam {
  unsigned int peer = 0;        ///< misc number of the other device
  unsigned int capability = 0;  ///< 0 read, 1 write
};

/// What a device is near to within its NUMA node.
enum class AffinityType : std::uint32_t { kCpuList = 0, kCpuBitmask = 1, kMemory = 2 };

}  // namespace kelp
