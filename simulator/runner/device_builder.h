// What a device answers because of what and where it is, and the numbers of its nodes.
#ifndef DEVICE_BUILDER_H
#define DEVICE_BUILDER_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host.h"
#include "json_cursor.h"

/// What the devices of one GPU share.
struct Device {
  Family family = Family::kTor1;
  std::array<uint64_t, 4> efuse{};
  uint64_t address = 0;  // packed
  uint16_t deviceId = 0;
  std::string modelName;
  std::string configSpace;
  size_t function = 0;  // index
};

constexpr uint32_t kNoNumber = 0xFFFF;

struct NodeNumbers {
  uint32_t misc = kNoNumber;
  uint32_t card = kNoNumber;
  uint32_t render = kNoNumber;
};

/// Hands out the numbers of nodes, each once.
class NumberPool {
 public:
  uint32_t takeMisc(const JsonCursor& entry, uint64_t copy) { return take(entry, "misc", copy, misc, 0); }
  /// Card and render node.
  void takeGraphics(const JsonCursor& entry, uint64_t copy, NodeNumbers& numbers);

 private:
  /// What `entry` says, or the lowest that is free.
  static uint32_t take(const JsonCursor& entry, std::string_view key, uint64_t copy,
                       std::vector<uint32_t>& used, uint32_t first);

  std::vector<uint32_t> misc;
  std::vector<uint32_t> cards;
  std::vector<uint32_t> renders;
};

/// Adds what the description did not say.
void completeCells(const Device& device, SimNodeKind kind, const NodeNumbers& numbers, CellMap& cells);

/// Makes the nodes of a device; returns the index of the misc node. Nodes that are there now are told to
/// the function too.
size_t addNodes(Host& host, const Device& device, SimNodeKind kind, const NodeNumbers& numbers, bool present);

#endif
