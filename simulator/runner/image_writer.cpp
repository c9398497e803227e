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
    made.initial = cell.number;
    made.initialKind = made.kind;
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

// The cells of a device are in a row; returns the first.
SimTable addCells(const CellMap& map, CellBuilder& cells) {
  const SimTable range{static_cast<uint32_t>(cells.cells.size()), static_cast<uint32_t>(map.size())};
  cells.add(map);
  return range;
}

// A GPU whose MPC mode can change has cells for each state; its nodes show those of the current one.
std::vector<SimFace> makeFaces(const Host& host, CellBuilder& cells) {
  std::vector<SimFace> rows;
  for (const Face& face : host.faces) {
    const SimTable range = addCells(face.cells, cells);
    SimFace row{};
    row.gpu = static_cast<uint32_t>(face.gpu);
    row.state = face.state;
    row.node = static_cast<uint32_t>(face.node);
    row.kind = face.kind;
    row.cellFirst = range.offset;
    row.cellCount = range.count;
    rows.push_back(row);
    for (const size_t node : face.graphics) {
      row.node = static_cast<uint32_t>(node);
      row.kind = host.nodes[node].kind;
      rows.push_back(row);
    }
  }
  return rows;
}

const SimFace* currentFace(const Host& host, const std::vector<SimFace>& faces, size_t node) {
  for (const SimFace& face : faces) {
    if (face.node == node && face.state == host.functions[face.gpu].mpcState) return &face;
  }
  return nullptr;
}

std::vector<SimNode> makeNodes(const Host& host, const std::vector<NodeFile>& files,
                               const std::vector<SimFace>& faces, CellBuilder& cells) {
  std::vector<SimNode> nodes;
  for (size_t i = 0; i < host.nodes.size(); ++i) {
    const Node& node = host.nodes[i];
    SimNode made{};
    made.kind = node.kind;
    made.number = node.number;
    made.owner = static_cast<uint32_t>(node.owner);
    made.gpu = static_cast<uint32_t>(node.gpu);
    made.present = node.present;
    made.device = files[i].device;
    made.inode = files[i].inode;
    const SimFace* const face = currentFace(host, faces, i);
    if (face) {
      made.kind = face->kind;
      made.cellFirst = face->cellFirst;
      made.cellCount = face->cellCount;
    } else if (node.owner == i) {
      const SimTable range = addCells(node.cells, cells);
      made.cellFirst = range.offset;
      made.cellCount = range.count;
    } else {
      made.cellFirst = nodes[node.owner].cellFirst;
      made.cellCount = nodes[node.owner].cellCount;
    }
    nodes.push_back(made);
  }
  return nodes;
}

std::vector<SimGpu> makeGpus(const Host& host) {
  std::vector<SimGpu> gpus;
  for (const PciFunction& function : host.functions) {
    gpus.push_back({static_cast<uint32_t>(function.ownNode), function.mpcState, function.mpcState,
                    static_cast<uint32_t>(function.family)});
  }
  return gpus;
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

std::string makeImage(const Host& host, const HostPaths& paths, const std::vector<FaultSpec>& faults) {
  ImageBuilder builder;
  CellBuilder cells(builder);
  SimImage head{};
  head.hostHash = host.hash;
  head.protocol = host.protocol;
  head.currentMajor = host.currentMajor;
  head.currentMinor = host.currentMinor;
  head.renderProtocol = host.renderProtocol;
  head.busyAttempts = host.busyAttempts;
  head.busyAgain = host.busyAgain;
  head.loaded = host.loaded;
  head.fixedTime = host.time.has_value();
  head.time = host.time.value_or(0);
  const std::vector<SimFace> faces = makeFaces(host, cells);
  const std::vector<SimNode> nodes = makeNodes(host, paths.files, faces, cells);
  head.nodes = builder.addTable(nodes);
  head.gpus = builder.addTable(makeGpus(host));
  head.faces = builder.addTable(faces);
  head.sessions = builder.addTable(std::vector<SimSession>(SIM_SESSION_COUNT));
  head.unexpectedCalls = builder.addTable(std::vector<SimUnexpected>(SIM_UNEXPECTED_COUNT));
  head.cells = builder.addTable(cells.cells);
  head.steps = builder.addTable(cells.steps);
  head.listed = builder.addTable(listedOf(host.listed));
  head.renderListed = builder.addTable(listedOf(host.renderListed));
  std::vector<SimNodePath> nodePaths;
  for (const NodePath& one : paths.nodePaths) {
    nodePaths.push_back({static_cast<uint32_t>(one.node), builder.addText(one.path)});
  }
  head.nodePaths = builder.addTable(nodePaths);
  const std::vector<SimFault> faultRows = makeFaults(faults, builder);
  head.faults = builder.addTable(faultRows);
  std::vector<uint32_t> removedRows;
  for (const std::string& path : paths.removed) removedRows.push_back(builder.addText(path));
  head.removed = builder.addTable(removedRows);
  return builder.finish(head);
}

namespace {

template <class Row>
bool fits(SimTable from, SimTable to, size_t size) {
  return from.count == to.count && from.offset == to.offset && from.offset + sizeof(Row) * from.count <= size;
}

template <class Row>
void carryTable(const std::string& from, std::string& to, SimTable table) {
  std::memcpy(to.data() + table.offset, from.data() + table.offset, sizeof(Row) * table.count);
}

// A device that a fault removed is back in the next run.
void carryNodes(const std::string& from, std::string& to, SimTable table) {
  for (uint32_t i = 0; i < table.count; ++i) {
    const size_t at = table.offset + sizeof(SimNode) * i;
    SimNode node{};
    std::memcpy(&node, from.data() + at, sizeof node);
    node.gone = 0;
    std::memcpy(to.data() + at, &node, sizeof node);
  }
}

}  // namespace

bool carryState(const std::string& from, std::string& to) {
  const SimImage old = headOf(from);
  SimImage head = headOf(to);
  const bool isSame = old.magic == SIM_IMAGE_MAGIC && old.layout == SIM_IMAGE_LAYOUT &&
                      old.hostHash == head.hostHash && fits<SimNode>(old.nodes, head.nodes, from.size()) &&
                      fits<SimGpu>(old.gpus, head.gpus, from.size()) &&
                      fits<SimSession>(old.sessions, head.sessions, from.size()) &&
                      fits<SimUnexpected>(old.unexpectedCalls, head.unexpectedCalls, from.size()) &&
                      fits<SimCell>(old.cells, head.cells, from.size());
  if (!isSame) return false;
  carryNodes(from, to, head.nodes);
  carryTable<SimGpu>(from, to, head.gpus);
  carryTable<SimSession>(from, to, head.sessions);
  carryTable<SimUnexpected>(from, to, head.unexpectedCalls);
  carryTable<SimCell>(from, to, head.cells);
  head.calls = old.calls;
  head.unexpected = old.unexpected;
  head.unsettled = old.unsettled;
  head.lastSession = old.lastSession;
  head.lastBuffer = old.lastBuffer;
  std::memcpy(to.data(), &head, sizeof head);
  return true;
}
