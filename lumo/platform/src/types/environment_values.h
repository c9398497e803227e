#pragma once

#include <cstdint>

namespace kelp {

/// How the kernel module was loaded. The front end numbers these modes by the file's own text.
enum class DriverMode : std::uint32_t {
  kOther = 0,
  kBareHost = 1,            ///< "-1"
  kVirtualisationHost = 2,  ///< "0"
  kGuest = 3,               ///< "1"
};

enum class EnvironmentType : std::uint32_t { kHost = 0, kContainer = 1 };

/// Whether the accelerator nodes are there besides the GPU's own.
enum class GpuEnvType : std::uint32_t { kComplete = 0, kPartial = 1 };

}  // namespace kelp
