#pragma once

#include <cstdint>
#include <string>

#include "kelp_return.h"

namespace kelp {

/// A kind of vGPU that a GPU offers, as the host's mediated device framework describes it. A number
/// that the description lacks has state 6.
struct MdevVirtType {
  std::string id;         ///< decimal number of the type
  std::string className;  ///< the framework's device API
  std::string name;
  Stated<unsigned long> maxWidth;   ///< pixels
  Stated<unsigned long> maxHeight;  ///< pixels
  Stated<unsigned long> maxEncodeNum;
  Stated<unsigned long> maxDecodeNum;
  Stated<unsigned long> framebuffer;  ///< MiB
  Stated<unsigned long> maxInstances;
  Stated<unsigned long> maxVirtualDisplay;
};

/// Memory of a vGPU as its guest sees it, in bytes.
struct GuestMemoryUsage {
  Stated<unsigned long> total;
  Stated<unsigned long> used;
};

struct VgpuOverCommitInfo {
  unsigned int enabled = 0;       ///< 0 off, 1 on
  unsigned int systemMemory = 0;  ///< lent to the vGPU, MiB
};

}  // namespace kelp
