#include "pci_reader.h"

#include <cstdio>

#include "config_space.h"

namespace {

PciAddress readAddress(const JsonCursor& gpu, uint64_t copy, size_t index) {
  const auto given = gpu.find("address");
  if (!given) {
    // Sixteen to a domain, each below a host bridge of its own.
    return {static_cast<unsigned>(index / 16), static_cast<unsigned>(index % 16 * 16 + 1), 0, 0};
  }
  const auto parsed = parseAddress(given->text());
  if (!parsed) given->fail("a PCI address such as \"0000:41:00.0\"");
  PciAddress address = *parsed;
  address.bus += static_cast<unsigned>(copy);
  if (address.bus > 0xFF) given->failWith("repeated too often: there is no such bus");
  return address;
}

// A function hangs below a root port of the host bridge that has its sixteen buses.
std::vector<std::string> defaultUpstream(const PciAddress& address) {
  char root[24];
  const unsigned firstBus = address.bus & 0xF0;
  std::snprintf(root, sizeof root, "pci%04x:%02x", address.domain, firstBus);
  if (address.bus == firstBus) return {root};
  return {root, PciAddress{address.domain, firstBus, address.bus - firstBus, 0}.text()};
}

std::vector<std::string> readPath(const JsonCursor& upstream) {
  std::vector<std::string> path;
  for (const JsonCursor& bridge : upstream.elements()) {
    const std::string name = bridge.text();
    const bool isRoot = path.empty();
    if (isRoot ? !name.starts_with("pci") : !parseAddress(name)) {
      bridge.fail(isRoot ? "a host bridge such as \"pci0000:40\"" : "a PCI address");
    }
    path.push_back(name);
  }
  if (path.empty()) upstream.fail("at least a host bridge");
  return path;
}

Link readLink(const JsonCursor& link, const char* speed, const char* width) {
  const JsonCursor speedPlace = link.require(speed);
  if (!speedPlace.value().is_number() || !linkSpeedCode(speedPlace.value().get<double>())) {
    speedPlace.fail("a link speed in GT/s: 2.5, 5, 8, 16, 32 or 64");
  }
  return {speedPlace.value().get<double>(), static_cast<uint32_t>(link.require(width).whole(1, 32))};
}

void readBars(const JsonCursor& gpu, PciFunction& function) {
  const JsonCursor bars = gpu.require("bars");
  const auto rows = bars.elements();
  if (rows.size() > function.bars.size()) bars.fail("at most 6 BARs");
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].value().is_null()) continue;
    Bar bar;
    bar.size = rows[i].require("size").number();
    if (const auto prefetchable = rows[i].find("prefetchable")) bar.prefetchable = prefetchable->flag();
    if (const auto bits = rows[i].find("bits")) {
      if (bits->number() != 32 && bits->number() != 64) bits->fail("32 or 64");
      bar.is64 = bits->number() == 64;
    }
    function.bars[i] = bar;
  }
}

}  // namespace

int readNumaNode(const JsonCursor& place) {
  if (!place.value().is_number_integer() || place.value().get<int64_t>() < -1) {
    place.fail("a NUMA node, or -1");
  }
  return place.value().get<int>();
}

std::string readCpus(const JsonCursor& place) {
  const bool isList = place.text().find_first_not_of("0123456789,-") == std::string::npos;
  if (!isList) place.fail("a list of CPUs such as \"0-15,32-47\"");
  return place.text();
}

std::vector<std::string> readUpstream(const JsonCursor& entry, const PciAddress& address) {
  const auto upstream = entry.find("upstream");
  return upstream ? readPath(*upstream) : defaultUpstream(address);
}

std::string PciAddress::text() const {
  char out[40];
  std::snprintf(out, sizeof out, "%04x:%02x:%02x.%x", domain, bus, device, function);
  return out;
}

uint64_t PciAddress::packed() const {
  return uint64_t{domain} << 32 | uint64_t{bus} << 16 | uint64_t{device} << 8 | function;
}

std::optional<PciAddress> parseAddress(const std::string& text) {
  PciAddress address;
  int used = 0;
  const int fields = std::sscanf(text.c_str(), "%4x:%2x:%2x.%1x%n", &address.domain, &address.bus,
                                 &address.device, &address.function, &used);
  const bool isWhole = fields == 4 && static_cast<size_t>(used) == text.size();
  if (!isWhole || address.device > 31 || address.function > 7) return std::nullopt;
  return address;
}

Model readModel(const JsonCursor& gpu) {
  if (const auto id = gpu.find("device_id")) {
    const uint64_t number = id->number();
    if (number > 0xFFFF) id->fail("a device id of 16 bits");
    const Model* const model = findModel(static_cast<uint16_t>(number));
    return model ? *model : Model{static_cast<uint16_t>(number), "OVT T1"};
  }
  const auto name = gpu.find("model");
  if (!name) gpu.failWith("the key \"model\" (or \"device_id\") is missing");
  const Model* const model = findModel(name->text());
  if (model) return *model;
  std::string all;
  for (const Model& known : allModels()) {
    if (all.find(known.name) == std::string::npos) all += (all.empty() ? "" : ", ") + std::string(known.name);
  }
  name->fail("one of " + all);
}

Family familyOf(const Model& model) {
  const uint32_t number = model.deviceId >> 8;
  return isFamily(number) ? static_cast<Family>(number) : Family::kTor1;
}

PciFunction readFunction(const JsonCursor& gpu, uint64_t copy, size_t index) {
  PciFunction function;
  const Model model = readModel(gpu);
  const PciAddress address = readAddress(gpu, copy, index);
  function.place.address = address.text();
  function.place.upstream = readUpstream(gpu, address);
  function.identity.deviceId = model.deviceId;
  function.subsystemDeviceId = model.deviceId;
  if (const auto subsystem = gpu.find("subsystem")) {
    if (const auto vendor = subsystem->find("vendor")) {
      function.subsystemVendorId = static_cast<uint16_t>(vendor->number());
    }
    if (const auto device = subsystem->find("device")) {
      function.subsystemDeviceId = static_cast<uint16_t>(device->number());
    }
  }
  function.identity.classCode = static_cast<uint32_t>(gpu.require("class").number() & 0xFFFFFF);
  function.revision = static_cast<uint8_t>(gpu.require("revision").whole(0, 255));
  const JsonCursor link = gpu.require("link");
  function.current = readLink(link, "speed", "width");
  function.highest = readLink(link, "max_speed", "max_width");
  function.hasPcieCapability = gpu.require("pcie_capability").flag();
  function.place.numaNode = readNumaNode(gpu.require("numa_node"));
  function.place.cpus = readCpus(gpu.require("cpus"));
  if (const auto physfn = gpu.find("physfn")) function.isVirtualFunction = physfn->flag();
  readBars(gpu, function);
  placeBars(function, index);
  return function;
}
