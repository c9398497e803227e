#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kelp_return.h"

namespace kelp::linux_ {

enum class PciNodeType : std::uint32_t {
  kUnknown = 0,
  kHostBridge = 1,
  kOtherBridge = 2,
  kGpu = 3,  ///< of this maker
  kNetworkAdapter = 4,
};

/// One PCI function and its place in the machine, as sysfs shows them.
struct PciNodeInfo {
  std::uint32_t domain = 0;
  std::uint32_t bus = 0;
  std::uint32_t deviceId = 0;
  PciNodeType type = PciNodeType::kUnknown;
  std::string cpuList;   ///< the first 20 characters
  std::string numaNode;  ///< "-1" on a host without NUMA
  /// The names of the function's ancestors, root complex first, and its own last.
  std::vector<std::string> path;
};

/// The address as sysfs spells it: leading zeros of the domain are cut down to four digits. State 1 for a
/// text that is no PCI address.
Stated<std::string> normaliseSbdf(std::string_view sbdf);

/// Reads the function at an address. State 1, with a line in the log, when the text is no address, when a
/// file is missing, empty or no number, and when the function has no place in the tree. One link and
/// five files, no more than 20 characters of each.
Stated<PciNodeInfo> readPciNode(const std::string& sbdf);

}  // namespace kelp::linux_
