#include "device_builder.h"

#include <algorithm>

#include "board_data.h"
#include "efuse.h"
#include "value_reader.h"

namespace {

constexpr uint32_t kFirstRender = 128;

// Id 0 repeats the value that is shown.
void addAlias(CellMap& cells, SimValue value, uint32_t shown) {
  const auto found = cells.find({static_cast<uint16_t>(value), shown});
  if (found != cells.end()) cells.try_emplace({static_cast<uint16_t>(value), 0}, found->second);
}

}  // namespace

uint32_t NumberPool::take(const JsonCursor& entry, std::string_view key, uint64_t copy,
                          std::vector<uint32_t>& used, uint32_t first) {
  const auto given = entry.find(key);
  uint32_t number = first;
  if (given) {
    number = static_cast<uint32_t>(given->whole(0, 65534) + copy);
    if (std::find(used.begin(), used.end(), number) != used.end()) {
      given->failWith("the number " + std::to_string(number) + " is taken by another device");
    }
  } else {
    while (std::find(used.begin(), used.end(), number) != used.end()) ++number;
  }
  used.push_back(number);
  return number;
}

void NumberPool::takeGraphics(const JsonCursor& entry, uint64_t copy, NodeNumbers& numbers) {
  numbers.card = take(entry, "card", copy, cards, 0);
  numbers.render = take(entry, "render", copy, renders, kFirstRender);
}

void completeCells(const Device& device, SimNodeKind kind, const NodeNumbers& numbers, CellMap& cells) {
  const auto keep = [&](SimValue value, uint64_t number) {
    cells.try_emplace({static_cast<uint16_t>(value), 0}, Cell{.number = number});
  };
  const auto keepText = [&](SimValue value, const std::string& text) {
    cells.try_emplace({static_cast<uint16_t>(value), 0}, Cell{.kind = SIM_CELL_BLOB, .blob = text});
  };
  const FamilyTraits& traits = traitsOf(device.family);
  completeBoard(device.family, device.modelName, cells);
  addAlias(cells, SIM_CLOCK, traits.gpuClocks.front());
  addAlias(cells, SIM_TEMPERATURE, traits.sensors.front());
  keep(SIM_MISC_ID, numbers.misc);
  keep(SIM_CARD_ID, numbers.card);
  keep(SIM_RENDER_ID, numbers.render);
  const auto coreCount = cells.find({SIM_CORE_COUNT, 0});
  const uint64_t cores = coreCount == cells.end() ? 0 : coreCount->second.number;
  keep(SIM_CORE_MASK, cores < 64 ? (uint64_t{1} << cores) - 1 : ~uint64_t{0});
  keep(SIM_ADDRESS, device.address);
  keep(SIM_DEVICE_TYPE, kind == SIM_NODE_PLAIN ? 0 : kind == SIM_NODE_PARENT ? 1 : 2);
  keep(SIM_SABLINK_CAPABLE, 0);
  keepText(SIM_NAME, device.modelName);
  keepText(SIM_CONFIG_SPACE, device.configSpace);
  const size_t place = device.function + 1;
  keepText(SIM_SERIAL_NUMBER, "OV" + std::to_string(100000 + place));
  keep(SIM_SLOT_NUMBER, place);
  keepText(SIM_SLOT_NAME, "SLOT" + std::to_string(place));
  keep(SIM_EFUSE_START, traits.efuseStartBit);
  keep(SIM_EFUSE_BITS, 32 * kEfuseWords);
  if (!cells.contains({SIM_EFUSE_WORDS, 0})) {
    const auto words = makeEfuse(device.family, device.deviceId, device.efuse);
    setArray(cells, SIM_EFUSE_WORDS, {words.begin(), words.end()});
  }
}

size_t addNodes(Host& host, const Device& device, SimNodeKind kind, const NodeNumbers& numbers,
                bool present) {
  PciFunction& function = host.functions[device.function];
  const size_t owner = host.nodes.size();
  host.nodes.push_back({kind, numbers.misc, owner, device.function, {}, present});
  if (present) function.miscIds.push_back(numbers.misc);
  if (numbers.card == kNoNumber) return owner;
  host.nodes.push_back({SIM_NODE_CARD, numbers.card, owner, device.function, {}, present});
  host.nodes.push_back({SIM_NODE_RENDER, numbers.render, owner, device.function, {}, present});
  if (present) {
    function.cardIds.push_back(numbers.card);
    function.renderIds.push_back(numbers.render);
  }
  return owner;
}
