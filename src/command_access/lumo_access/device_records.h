#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "lumo.h"

namespace tolk {

/// The library's handles for one device and its parts. They belong to the library.
struct LumoModuleSet {
  LumoDevice* device = nullptr;
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
};

/// One instance of an MPC parent.
struct MpcInstance {
  std::uint32_t deviceIndex = 0;    ///< position in the library's order
  std::uint32_t instanceIndex = 0;  ///< number among its parent's instances
  LumoMpcProfile profile{};
};

/// From one device to its neighbour on a path, over all links that join the two.
struct SablinkHop {
  std::uint32_t localIndex = 0;  ///< positions in the library's order
  std::uint32_t remoteIndex = 0;
  std::vector<LumoSablinkLayout> ports;
};

using SablinkPath = std::vector<SablinkHop>;

/// A vGPU that exists on a GPU.
struct ActiveVirtDevice {
  std::string uuid;
  LumoModuleSet modules;
};

/// LUMO_VPU_SESSION_... by session id.
using SessionStates = std::map<std::uint32_t, std::uint32_t>;

/// Decimal counts of ECC errors: corrected and not correctable ones since the driver was loaded, then
/// both ever.
using EccErrorCounts = std::array<std::string, 4>;

}  // namespace tolk
