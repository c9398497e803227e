#include "pci_topology.h"

#include <algorithm>
#include <optional>

#include "linux/topology/pci_node_info.h"

namespace kelp {
namespace {

using linux_::PciNodeInfo;
using linux_::PciNodeType;

/// The dual-GPU card.
constexpr unsigned kDualCardDeviceId = 0x010F;

bool isEndpoint(const PciNodeInfo& node) {
  return node.type == PciNodeType::kGpu || node.type == PciNodeType::kNetworkAdapter;
}

/// The two GPUs of one card sit on neighbouring buses.
bool isInternalPair(const PciNodeInfo& a, const PciNodeInfo& b) {
  const auto isHalf = [](const PciNodeInfo& node) {
    return node.type == PciNodeType::kGpu && node.deviceId == kDualCardDeviceId;
  };
  return isHalf(a) && isHalf(b) && a.domain == b.domain && (a.bus + 1 == b.bus || b.bus + 1 == a.bus);
}

/// Index in both paths of the nearest node that they share; nothing under different root complexes.
std::optional<std::size_t> findCommonAncestor(const std::vector<std::string>& a,
                                              const std::vector<std::string>& b) {
  std::size_t index = std::min(a.size(), b.size());
  if (index == 0 || a.front() != b.front()) {
    return std::nullopt;
  }
  do {
    --index;
  } while (a[index] != b[index]);
  return index;
}

/// The level of two functions below a shared node.
Stated<TopologyLevel> levelBelow(std::size_t ancestor, const PciNodeInfo& a, const PciNodeInfo& b) {
  // The root complex, "pci0000:00", is no function that could be read; it acts as a host bridge.
  std::size_t ancestorLength = 1;
  PciNodeType ancestorType = PciNodeType::kHostBridge;
  if (ancestor > 0) {
    const auto node = linux_::readPciNode(a.path[ancestor]);
    if (!node.ok()) {
      return node.state();
    }
    ancestorLength = node.value().path.size();
    ancestorType = node.value().type;
  }
  if (a.path.size() == b.path.size() && ancestorLength + 1 == a.path.size()) {
    return TopologyLevel::kSingleBridge;
  }
  return ancestorType == PciNodeType::kHostBridge ? TopologyLevel::kHostBridge
                                                  : TopologyLevel::kMultipleBridges;
}

}  // namespace

Stated<TopologyLevel> getPciDeviceTopology(std::string_view sbdfA, std::string_view sbdfB) {
  const auto addressA = linux_::normaliseSbdf(sbdfA);
  const auto addressB = linux_::normaliseSbdf(sbdfB);
  if (!addressA.ok() || !addressB.ok()) {
    return KelpReturn::kFailure;
  }
  const bool isSame = addressA.value() == addressB.value();
  const auto a = linux_::readPciNode(addressA.value());
  if (!a.ok()) {
    return a.state();
  }
  const auto b = isSame ? a : linux_::readPciNode(addressB.value());
  if (!b.ok()) {
    return b.state();
  }
  if (!isEndpoint(a.value()) || !isEndpoint(b.value())) {
    return KelpReturn::kNotSupported;
  }
  if (isSame) {
    return TopologyLevel::kSame;
  }
  if (isInternalPair(a.value(), b.value())) {
    return TopologyLevel::kInternal;
  }
  if (a.value().numaNode != b.value().numaNode) {
    return TopologyLevel::kSystem;
  }
  const auto ancestor = findCommonAncestor(a.value().path, b.value().path);
  if (!ancestor) {
    return TopologyLevel::kNode;
  }
  return levelBelow(*ancestor, a.value(), b.value());
}

}  // namespace kelp
