#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelp {

enum class MpcMode : std::uint32_t { kOff = 0, kOn = 1 };

/// The size of one MPC instance. On an instance `id` holds the profile in bits 0 to 7 and the
/// instance's index in its parent in bits 8 to 15.
struct MpcProfile {
  std::uint32_t id = 0;
  std::string name;
  std::uint32_t coreCount = 0;
  std::uint64_t memory = 0;  ///< MiB
};

/// A way to divide a GPU: one profile per instance.
struct MpcConfiguration {
  std::uint32_t id = 0;
  std::string name;
  std::vector<std::uint32_t> profileIds;
};

struct MpcInstance {
  std::uint32_t miscId = 0;
  std::uint32_t instanceId = 0;  ///< index in its parent, from 0
};
using MpcInstList = std::vector<MpcInstance>;

struct SetMpcConfParam {
  std::uint32_t configId = 0;
};

struct SetMpcSwitchParam {
  MpcMode mode = MpcMode::kOff;
};

}  // namespace kelp
