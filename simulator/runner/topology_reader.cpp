#include "topology_reader.h"

#include <algorithm>
#include <deque>

#include "device_lists.h"
#include "pci_reader.h"
#include "value_reader.h"

namespace {

constexpr size_t kMaxLinks = 32;
constexpr size_t kMaxPaths = 16;
constexpr size_t kMaxPathDevices = 24;
constexpr uint64_t kErrorKinds = 6;
enum LinkState : uint64_t { kDown = 0, kUp = 1 };
enum SerdesState : uint64_t { kSerdesDown = 0, kSerdesLocked = 2 };

// A link as one of its two devices has it; its place in the list is its number there.
struct Port {
  size_t peer;
  size_t remotePort;
  uint64_t state;
};

using Ports = std::vector<std::vector<Port>>;  // by function

// Values that the device does not have yet.
void offer(CellMap& cells, SimValue value, uint64_t key, uint64_t number) {
  if (cells.contains({static_cast<uint16_t>(value), SIM_ANY_KEY})) return;
  cells.try_emplace({static_cast<uint16_t>(value), key}, Cell{.number = number});
}

uint32_t miscOf(const Host& host, size_t function) {
  return host.nodes[host.functions[function].ownNode].number;
}

void addLinks(const JsonCursor& row, Ports& ports) {
  row.allowKeys({"gpus", "count", "state"});
  const JsonCursor pair = row.require("gpus");
  const auto ends = pair.elements();
  if (ends.size() != 2) pair.fail("the places of two GPUs");
  const size_t a = ends[0].whole(0, ports.size() - 1);
  const size_t b = ends[1].whole(0, ports.size() - 1);
  if (a == b) pair.fail("the places of two GPUs");
  const auto countPlace = row.find("count");
  const auto statePlace = row.find("state");
  const uint64_t count = countPlace ? countPlace->whole(1, kMaxLinks) : 1;
  const uint64_t state = statePlace ? chooseFrom(*statePlace, {"down", "up", "downgraded"}) : uint64_t{kUp};
  for (uint64_t i = 0; i < count; ++i) {
    if (ports[a].size() == kMaxLinks || ports[b].size() == kMaxLinks) {
      row.failWith("a GPU has at most " + std::to_string(kMaxLinks) + " links");
    }
    const Port there{b, ports[b].size(), state};
    const Port back{a, ports[a].size(), state};
    ports[a].push_back(there);
    ports[b].push_back(back);
  }
}

bool areJoined(const Ports& ports, size_t a, size_t b) {
  return std::any_of(ports[a].begin(), ports[a].end(),
                     [&](const Port& port) { return port.peer == b && port.state != kDown; });
}

std::vector<size_t> distancesTo(const Ports& ports, size_t target) {
  std::vector<size_t> distances(ports.size(), SIZE_MAX);
  distances[target] = 0;
  std::deque<size_t> open{target};
  for (; !open.empty(); open.pop_front()) {
    for (size_t next = 0; next < ports.size(); ++next) {
      if (distances[next] != SIZE_MAX || !areJoined(ports, open.front(), next)) continue;
      distances[next] = distances[open.front()] + 1;
      open.push_back(next);
    }
  }
  return distances;
}

// All shortest paths from the last device of `path` on, one device nearer to the target at each step.
void collectPaths(const Ports& ports, const std::vector<size_t>& distances, std::vector<size_t>& path,
                  std::vector<std::vector<size_t>>& found) {
  const size_t last = path.back();
  if (found.size() == kMaxPaths || path.size() > kMaxPathDevices) return;
  if (distances[last] == 0) {
    found.push_back(path);
    return;
  }
  for (size_t next = 0; next < ports.size(); ++next) {
    if (distances[next] == SIZE_MAX || distances[next] + 1 != distances[last]) continue;
    if (!areJoined(ports, last, next)) continue;
    path.push_back(next);
    collectPaths(ports, distances, path, found);
    path.pop_back();
  }
}

void setPeer(const Host& host, const Ports& ports, size_t own, size_t peer, CellMap& cells) {
  const uint64_t key = miscOf(host, peer);
  uint64_t row = 0;
  for (size_t i = 0; i < ports[own].size(); ++i) {
    if (ports[own][i].peer != peer) continue;
    offer(cells, SIM_SABLINK_LOCAL_PORT, SIM_KEY(key, 0, 0, row), i);
    offer(cells, SIM_SABLINK_REMOTE_PORT, SIM_KEY(key, 0, 0, row), ports[own][i].remotePort);
    ++row;
  }
  offer(cells, SIM_SABLINK_LAYOUT_COUNT, key, row);
  const std::vector<size_t> distances = distancesTo(ports, peer);
  std::vector<std::vector<size_t>> paths;
  std::vector<size_t> begin{own};
  if (distances[own] != SIZE_MAX) collectPaths(ports, distances, begin, paths);
  offer(cells, SIM_SABLINK_PATH_COUNT, key, paths.size());
  for (size_t i = 0; i < paths.size(); ++i) {
    std::vector<uint32_t> miscIds;
    for (const size_t device : paths[i]) miscIds.push_back(miscOf(host, device));
    const uint64_t rowKey = SIM_KEY(key, 0, 0, i);
    offer(cells, SIM_SABLINK_PATH_LENGTH, rowKey, miscIds.size());
    if (!cells.contains({SIM_SABLINK_PATH_DEVICES, rowKey})) {
      setArray(cells, SIM_SABLINK_PATH_DEVICES, miscIds, rowKey);
    }
  }
}

void setPorts(const Host& host, const Ports& ports, size_t own, CellMap& cells) {
  for (size_t link = 0; link < ports[own].size(); ++link) {
    const Port& port = ports[own][link];
    const auto address = parseAddress(host.functions[port.peer].place.address);
    offer(cells, SIM_SABLINK_STATE, link, port.state);
    for (const uint64_t capability : {0, 1}) {
      offer(cells, SIM_SABLINK_CAPABILITY, SIM_KEY(link, capability, 0, 0), 1);
    }
    for (uint64_t kind = 0; kind < kErrorKinds; ++kind) {
      offer(cells, SIM_SABLINK_ERRORS, SIM_KEY(link, kind, 0, 0), 0);
    }
    offer(cells, SIM_SABLINK_REMOTE_ADDRESS, link, address->packed());
    offer(cells, SIM_SABLINK_REMOTE_LINK, link, port.remotePort);
    offer(cells, SIM_SABLINK_REMOTE_MISC_ID, link, miscOf(host, port.peer));
    offer(cells, SIM_SERDES_LANES, link, 4);
    for (uint64_t lane = 0; lane < 4; ++lane) {
      offer(cells, SIM_SERDES_STATE, SIM_KEY(link, 0, 0, lane),
            port.state == kDown ? kSerdesDown : kSerdesLocked);
    }
  }
}

// The cells of the GPU's own node, in each state of its MPC mode.
std::vector<CellMap*> ownCells(Host& host, size_t function) {
  const size_t node = host.functions[function].ownNode;
  std::vector<CellMap*> all{&host.nodes[node].cells};
  for (Face& face : host.faces) {
    if (face.node == node) all.push_back(&face.cells);
  }
  return all;
}

}  // namespace

void readSablink(const JsonCursor& top, Host& host) {
  const auto sablink = top.find("sablink");
  if (!sablink) return;
  sablink->allowKeys({"speed", "version", "links"});
  Ports ports(host.functions.size());
  if (ports.empty()) sablink->failWith("there are no GPUs to be linked");
  const auto speedPlace = sablink->find("speed");
  const auto versionPlace = sablink->find("version");
  const uint64_t speed = speedPlace ? speedPlace->whole(0, 0xFFFFFFFF) : 25000;
  const uint64_t version = versionPlace ? versionPlace->whole(0, 0xFFFFFFFF) : 200;
  for (const JsonCursor& row : sablink->require("links").elements()) addLinks(row, ports);
  for (size_t own = 0; own < ports.size(); ++own) {
    if (ports[own].empty()) continue;
    for (CellMap* const cells : ownCells(host, own)) {
      setNumber(*cells, SIM_SABLINK_CAPABLE, 1);
      offer(*cells, SIM_SABLINK_LINKS, 0, ports[own].size());
      offer(*cells, SIM_SABLINK_SPEED, 0, speed);
      offer(*cells, SIM_SABLINK_VERSION, 0, version);
      setPorts(host, ports, own, *cells);
      for (size_t peer = 0; peer < ports.size(); ++peer) {
        if (peer != own) setPeer(host, ports, own, peer, *cells);
      }
    }
  }
}

void readAdapters(const JsonCursor& top, Host& host) {
  const auto rows = top.find("adapters");
  if (!rows) return;
  for (const JsonCursor& entry : rows->elements()) {
    entry.allowKeys({"name", "address", "upstream", "numa_node", "cpus", "vendor", "device", "class"});
    const JsonCursor addressPlace = entry.require("address");
    const auto address = parseAddress(addressPlace.text());
    if (!address) addressPlace.fail("a PCI address such as \"0000:41:00.0\"");
    const auto number = [&](const char* key, uint64_t otherwise) {
      const auto place = entry.find(key);
      return place ? place->number() : otherwise;
    };
    Adapter adapter;
    adapter.place.address = address->text();
    for (const PciFunction& function : host.functions) {
      if (function.place.address == adapter.place.address) {
        addressPlace.failWith("the address " + adapter.place.address + " is taken by a GPU");
      }
    }
    for (const Adapter& other : host.adapters) {
      if (other.place.address == adapter.place.address) {
        addressPlace.failWith("the address " + adapter.place.address + " is taken by another adapter");
      }
    }
    const auto numa = entry.find("numa_node");
    const auto cpus = entry.find("cpus");
    adapter.place.upstream = readUpstream(entry, *address);
    adapter.place.numaNode = numa ? readNumaNode(*numa) : 0;
    adapter.place.cpus = cpus ? readCpus(*cpus) : "0-31";
    adapter.identity.vendorId = static_cast<uint16_t>(number("vendor", 0x15B3));
    adapter.identity.deviceId = static_cast<uint16_t>(number("device", 0x1017));
    adapter.identity.classCode = static_cast<uint32_t>(number("class", 0x020700));
    const auto name = entry.find("name");
    if (name && !name->value().is_null()) adapter.name = name->text();
    host.adapters.push_back(std::move(adapter));
  }
}

void readBridges(const JsonCursor& top, Host& host) {
  const auto bridges = top.find("bridges");
  if (!bridges) return;
  for (const auto& [address, entry] : bridges->members()) {
    entry.allowKeys({"vendor", "device", "class", "numa_node", "cpus"});
    if (!parseAddress(address)) entry.failWith("a bridge is named by its PCI address");
    Bridge& bridge = host.bridges[address];
    if (const auto vendor = entry.find("vendor")) bridge.vendorId = static_cast<uint16_t>(vendor->number());
    if (const auto device = entry.find("device")) bridge.deviceId = static_cast<uint16_t>(device->number());
    if (const auto code = entry.find("class")) bridge.classCode = static_cast<uint32_t>(code->number());
    if (const auto numa = entry.find("numa_node")) bridge.numaNode = readNumaNode(*numa);
    if (const auto cpus = entry.find("cpus")) bridge.cpus = readCpus(*cpus);
  }
}
