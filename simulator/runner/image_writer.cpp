#include "image_writer.h"

#include <cstring>

namespace {

// Appends tables and texts to the image and hands out their places.
class ImageBuilder {
 public:
  ImageBuilder() : bytes(sizeof(SimImage), '\0') {}

  template <class Row>
  SimTable addTable(const std::vector<Row>& rows) {
    align(alignof(Row));
    const SimTable table{place(), static_cast<uint32_t>(rows.size())};
    bytes.append(reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(Row));
    return table;
  }

  uint32_t addBytes(const std::string& text) {
    const uint32_t at = place();
    bytes += text;
    return at;
  }

  uint32_t addText(const std::string& text) { return addBytes(text + '\0'); }

  std::string finish(SimImage& head) {
    align(8);
    head.magic = SIM_IMAGE_MAGIC;
    head.layout = SIM_IMAGE_LAYOUT;
    head.size = bytes.size();
    std::memcpy(bytes.data(), &head, sizeof head);
    return std::move(bytes);
  }

 private:
  uint32_t place() const { return static_cast<uint32_t>(bytes.size()); }
  void align(size_t size) { bytes.resize((bytes.size() + size - 1) / size * size); }

  std::string bytes;
};

class CellBuilder {
 public:
  explicit CellBuilder(ImageBuilder& target) : builder(target) {}

  void add(const CellMap& map) {
    for (const auto& [key, cell] : map) cells.push_back(make(key.first, key.second, cell));
  }

  std::vector<SimCell> cells;
  std::vector<SimCell> steps;

 private:
  SimCell make(uint16_t value, uint64_t key, const Cell& cell) {
    SimCell made{};
    made.key = key;
    made.value = value;
    made.kind = static_cast<uint8_t>(cell.kind);
    made.cycle = cell.cycle;
    made.number = cell.number;
    if (cell.kind == SIM_CELL_BLOB) {
      made.length = static_cast<uint32_t>(cell.blob.size());
      made.offset = builder.addBytes(cell.blob);
    } else if (cell.kind == SIM_CELL_STEPS) {
      made.offset = static_cast<uint32_t>(steps.size());
      made.length = static_cast<uint32_t>(cell.steps.size());
      for (const Cell& step : cell.steps) steps.push_back(make(value, key, step));
    }
    return made;
  }

  ImageBuilder& builder;
};

std::vector<SimListed> listedOf(const std::vector<ListedInterface>& listed) {
  std::vector<SimListed> rows;
  for (const ListedInterface& one : listed) rows.push_back({one.name, one.minVersion, one.maxVersion});
  return rows;
}

std::vector<SimNode> makeNodes(const Host& host, const std::vector<NodeFile>& files, CellBuilder& cells) {
  std::vector<SimNode> nodes;
  for (size_t i = 0; i < host.nodes.size(); ++i) {
    const Node& node = host.nodes[i];
    SimNode made{};
    made.kind = node.kind;
    made.number = node.number;
    made.owner = static_cast<uint32_t>(node.owner);
    made.device = files[i].device;
    made.inode = files[i].inode;
    if (node.owner == i) {
      made.cellFirst = static_cast<uint32_t>(cells.cells.size());
      made.cellCount = static_cast<uint32_t>(node.cells.size());
      cells.add(node.cells);
    } else {
      made.cellFirst = nodes[node.owner].cellFirst;
      made.cellCount = nodes[node.owner].cellCount;
    }
    nodes.push_back(made);
  }
  return nodes;
}

std::vector<SimFault> makeFaults(const std::vector<FaultSpec>& specs, ImageBuilder& builder) {
  std::vector<SimFault> faults;
  for (const FaultSpec& spec : specs) {
    SimFault fault = spec.fault;
    if (!spec.pattern.empty()) fault.pattern = builder.addText(spec.pattern);
    fault.text = builder.addText(spec.text);
    fault.textLength = static_cast<uint32_t>(spec.text.size());
    faults.push_back(fault);
  }
  return faults;
}

SimImage headOf(const std::string& image) {
  SimImage head{};
  if (image.size() >= sizeof head) std::memcpy(&head, image.data(), sizeof head);
  return head;
}

}  // namespace

std::string makeImage(const Host& host, const std::vector<NodeFile>& files,
                      const std::vector<FaultSpec>& faults, const std::vector<std::string>& removed) {
  ImageBuilder builder;
  CellBuilder cells(builder);
  SimImage head{};
  head.hostHash = host.hash;
  head.protocol = host.protocol;
  head.currentMajor = host.currentMajor;
  head.currentMinor = host.currentMinor;
  head.renderProtocol = host.renderProtocol;
  head.loaded = host.loaded;
  head.fixedTime = host.time.has_value();
  head.time = host.time.value_or(0);
  const std::vector<SimNode> nodes = makeNodes(host, files, cells);
  head.nodes = builder.addTable(nodes);
  head.cells = builder.addTable(cells.cells);
  head.steps = builder.addTable(cells.steps);
  head.listed = builder.addTable(listedOf(host.listed));
  head.renderListed = builder.addTable(listedOf(host.renderListed));
  const std::vector<SimFault> faultRows = makeFaults(faults, builder);
  head.faults = builder.addTable(faultRows);
  std::vector<uint32_t> removedRows;
  for (const std::string& path : removed) removedRows.push_back(builder.addText(path));
  head.removed = builder.addTable(removedRows);
  return builder.finish(head);
}

bool carryState(const std::string& from, std::string& to) {
  const SimImage old = headOf(from);
  SimImage head = headOf(to);
  const uint64_t size = uint64_t{old.cells.count} * sizeof(SimCell);
  const bool fits = old.magic == SIM_IMAGE_MAGIC && old.layout == SIM_IMAGE_LAYOUT &&
                    old.hostHash == head.hostHash && old.cells.count == head.cells.count &&
                    old.cells.offset == head.cells.offset && old.cells.offset + size <= from.size();
  if (!fits) return false;
  std::memcpy(to.data() + head.cells.offset, from.data() + old.cells.offset, size);
  head.calls = old.calls;
  std::memcpy(to.data(), &head, sizeof head);
  return true;
}
