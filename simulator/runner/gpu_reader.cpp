#include "gpu_reader.h"

#include <algorithm>
#include <cstdio>

#include "config_space.h"
#include "efuse.h"
#include "host_document.h"
#include "value_reader.h"

using nlohmann::json;

namespace {

constexpr uint32_t kNone16 = 0xFFFF;
constexpr uint32_t kFirstRender = 128;

const std::vector<std::string_view> kGpuKeys{
    "model",     "device_id", "address",   "upstream",  "misc",   "card",   "render",          "class",
    "revision",  "subsystem", "link",      "numa_node", "cpus",   "bars",   "pcie_capability", "efuse",
    "processes", "displays",  "vpu_cores", "mpc",       "physfn", "values", "repeat"};
const std::vector<std::string_view> kInstanceKeys{"profile", "misc",      "card",     "render",
                                                  "values",  "processes", "vpu_cores"};

void checkRows(const JsonCursor& gpu, std::string_view key, const std::vector<std::string_view>& keys) {
  const auto rows = gpu.find(key);
  if (!rows) return;
  for (const JsonCursor& row : rows->elements()) {
    if (!row.value().is_null()) row.allowKeys(keys);
  }
}

void checkLists(const JsonCursor& device) {
  checkRows(device, "processes", {"pid", "kind", "gpu_memory", "system_memory"});
  checkRows(device, "displays", {"type", "h_res", "v_res", "pixel_clock"});
  checkRows(device, "vpu_cores", {"kind", "threads", "instances", "clock"});
  if (const auto values = device.find("values")) checkValueNames(*values);
}

uint64_t choose(const JsonCursor& place, const std::vector<std::string_view>& names) {
  if (place.value().is_string()) {
    for (size_t i = 0; i < names.size(); ++i) {
      if (names[i] == place.text()) return i;
    }
  } else if (place.value().is_number_unsigned()) {
    return place.number();
  }
  std::string expected = "a number or one of";
  for (const std::string_view name : names) expected += " \"" + std::string(name) + "\"";
  place.fail(expected);
}

struct Address {
  unsigned domain = 0;
  unsigned bus = 0;
  unsigned device = 0;
  unsigned function = 0;

  std::string text() const {
    char out[40];
    std::snprintf(out, sizeof out, "%04x:%02x:%02x.%x", domain, bus, device, function);
    return out;
  }
  uint64_t packed() const {
    return uint64_t{domain} << 32 | uint64_t{bus} << 16 | uint64_t{device} << 8 | function;
  }
};

bool parseAddress(const std::string& text, Address& address) {
  int used = 0;
  const int fields = std::sscanf(text.c_str(), "%4x:%2x:%2x.%1x%n", &address.domain, &address.bus,
                                 &address.device, &address.function, &used);
  return fields == 4 && static_cast<size_t>(used) == text.size() && address.device < 32 &&
         address.function < 8;
}

Address readAddress(const JsonCursor& gpu, uint64_t copy, size_t index) {
  const auto given = gpu.find("address");
  if (!given) {
    // Sixteen to a domain, each below a host bridge of its own.
    return {static_cast<unsigned>(index / 16), static_cast<unsigned>(index % 16 * 16 + 1), 0, 0};
  }
  Address address;
  if (!parseAddress(given->text(), address)) given->fail("a PCI address such as \"0000:41:00.0\"");
  address.bus += static_cast<unsigned>(copy);
  if (address.bus > 0xFF) given->failWith("repeated too often: there is no such bus");
  return address;
}

// A function hangs below a root port of the host bridge that has its sixteen buses.
std::vector<std::string> defaultUpstream(const Address& address) {
  char root[24];
  const unsigned firstBus = address.bus & 0xF0;
  std::snprintf(root, sizeof root, "pci%04x:%02x", address.domain, firstBus);
  if (address.bus == firstBus) return {root};
  return {root, Address{address.domain, firstBus, address.bus - firstBus, 0}.text()};
}

// An id that no model has is a device all the same: of the family that its high byte tells, or like the
// newest one.
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

// Bits of a list such as "0-3,8".
bool isCpuList(const std::string& text) {
  return text.find_first_not_of("0123456789,-") == std::string::npos;
}

void setProcesses(const JsonCursor& device, CellMap& cells, Host& host) {
  const auto rows = device.find("processes");
  if (!rows) return;
  uint64_t row = 0;
  for (const JsonCursor& process : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, row++);
    const uint64_t pid = process.require("pid").whole(0, 0xFFFFFFFF);
    const auto kind = process.find("kind");
    const auto systemMemory = process.find("system_memory");
    setNumber(cells, SIM_PROCESS_PID, pid, key);
    setNumber(cells, SIM_PROCESS_KIND, kind ? choose(*kind, {"graphics", "compute"}) : 1, key);
    setNumber(cells, SIM_PROCESS_GPU_MEMORY, process.require("gpu_memory").number(), key);
    setNumber(cells, SIM_PROCESS_SYSTEM_MEMORY, systemMemory ? systemMemory->number() : 0, key);
    host.unknownPids.push_back(pid);
  }
  setNumber(cells, SIM_PROCESS_COUNT, row);
}

void setDisplays(const JsonCursor& device, CellMap& cells) {
  const auto rows = device.find("displays");
  if (!rows) return;
  uint64_t row = 0;
  for (const JsonCursor& display : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, row++);
    const auto set = [&](const char* name, SimValue value) {
      const JsonCursor place = display.require(name);
      if (place.value() == "n/a") {
        cells[{static_cast<uint16_t>(value), key}] = Cell{.kind = SIM_CELL_NA};
      } else {
        setNumber(cells, value, place.number(), key);
      }
    };
    setNumber(cells, SIM_DISPLAY_TYPE,
              choose(display.require("type"), {"DP", "EDP", "VGA", "HDMI", "LVDS", "other"}), key);
    set("h_res", SIM_DISPLAY_H_RES);
    set("v_res", SIM_DISPLAY_V_RES);
    set("pixel_clock", SIM_DISPLAY_PIXEL_CLOCK);
  }
  setNumber(cells, SIM_DISPLAY_COUNT, row);
}

void setVpuCores(const JsonCursor& device, CellMap& cells) {
  const auto rows = device.find("vpu_cores");
  if (!rows) return;
  std::vector<uint32_t> clocks;
  uint64_t row = 0;
  for (const JsonCursor& core : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, row++);
    const auto clock = core.find("clock");
    const bool hasClock = clock && clock->value() != "n/a";
    setNumber(cells, SIM_VPU_CORE_KIND, choose(core.require("kind"), {"encoder", "decoder", "both"}), key);
    setNumber(cells, SIM_VPU_CORE_THREADS, core.require("threads").whole(0, 255), key);
    setNumber(cells, SIM_VPU_CORE_INSTANCES, core.require("instances").whole(0, 65535), key);
    clocks.push_back(hasClock ? static_cast<uint32_t>(clock->whole(0, 0xFFFFFFFF)) : 0xFFFFFFFF);
    if (hasClock) {
      setNumber(cells, SIM_VPU_CORE_CLOCK, clocks.back(), key);
    } else {
      cells[{SIM_VPU_CORE_CLOCK, key}] = Cell{.kind = SIM_CELL_NA};
    }
  }
  setNumber(cells, SIM_VPU_CORE_COUNT, row);
  setArray(cells, SIM_VPU_UTILIZATION, std::vector<uint32_t>(row, 0));
  setArray(cells, SIM_VPU_CLOCK, clocks);
}

// Id 0 repeats the value that is shown.
void addAlias(CellMap& cells, SimValue value, uint32_t shown) {
  const auto found = cells.find({static_cast<uint16_t>(value), shown});
  if (found != cells.end()) cells.try_emplace({static_cast<uint16_t>(value), 0}, found->second);
}

void setProfileRow(CellMap& cells, const JsonCursor& profile, SimValue id, SimValue name, SimValue cores,
                   SimValue memory, uint64_t idBits, uint64_t key) {
  setNumber(cells, id, profile.require("id").whole(0, 255) | idBits, key);
  setText(cells, name, profile.require("name").text(), key);
  setNumber(cells, cores, profile.require("cores").whole(0, 65535), key);
  setNumber(cells, memory, profile.require("memory").whole(0, uint64_t{1} << 40), key);
}

std::vector<uint32_t> profileIdsOf(const JsonCursor& configuration) {
  std::vector<uint32_t> ids;
  for (const JsonCursor& id : configuration.require("profiles").elements()) {
    ids.push_back(static_cast<uint32_t>(id.whole(0, 255)));
  }
  return ids;
}

void setConfiguration(CellMap& cells, const JsonCursor& configuration, SimValue id, SimValue name,
                      SimValue size, SimValue profiles, uint64_t key) {
  const std::vector<uint32_t> ids = profileIdsOf(configuration);
  setNumber(cells, id, configuration.require("id").whole(0, 65534), key);
  setText(cells, name, configuration.require("name").text(), key);
  setNumber(cells, size, ids.size(), key);
  setArray(cells, profiles, ids, key);
}

// The configuration that is set; nothing when none is.
std::optional<JsonCursor> currentConfiguration(const JsonCursor& mpc) {
  const auto current = mpc.find("current");
  if (!current || current->value().is_null()) return std::nullopt;
  const uint64_t id = current->whole(0, 65534);
  for (const JsonCursor& configuration : mpc.require("configurations").elements()) {
    if (configuration.require("id").whole(0, 65534) == id) return configuration;
  }
  current->fail("the id of one of the configurations");
}

void setMpcLists(const JsonCursor& mpc, CellMap& cells) {
  uint64_t row = 0;
  for (const JsonCursor& profile : mpc.require("profiles").elements()) {
    setProfileRow(cells, profile, SIM_PROFILE_ID, SIM_PROFILE_NAME, SIM_PROFILE_CORES, SIM_PROFILE_MEMORY, 0,
                  SIM_KEY(0, 0, 0, row++));
  }
  setNumber(cells, SIM_PROFILE_COUNT, row);
  row = 0;
  for (const JsonCursor& configuration : mpc.require("configurations").elements()) {
    setConfiguration(cells, configuration, SIM_CONFIGURATION_ID, SIM_CONFIGURATION_NAME,
                     SIM_CONFIGURATION_SIZE, SIM_CONFIGURATION_PROFILES, SIM_KEY(0, 0, 0, row++));
  }
  setNumber(cells, SIM_CONFIGURATION_COUNT, row);
  if (const auto current = currentConfiguration(mpc)) {
    setConfiguration(cells, *current, SIM_CURRENT_ID, SIM_CURRENT_NAME, SIM_CURRENT_SIZE,
                     SIM_CURRENT_PROFILES, 0);
  } else {
    setNumber(cells, SIM_CURRENT_ID, kNone16);
    setText(cells, SIM_CURRENT_NAME, "");
    setNumber(cells, SIM_CURRENT_SIZE, 0);
    setArray(cells, SIM_CURRENT_PROFILES, {});
  }
}

JsonCursor profileById(const JsonCursor& mpc, uint64_t id, const JsonCursor& asked) {
  for (const JsonCursor& profile : mpc.require("profiles").elements()) {
    if (profile.require("id").whole(0, 255) == id) return profile;
  }
  asked.failWith("there is no profile " + std::to_string(id) + " among mpc.profiles");
}

}  // namespace

// What the devices of one GPU share.
struct GpuReader::Device {
  Family family;
  SimNodeKind kind;
  uint32_t misc;
  std::array<uint64_t, 4> efuse;
  Address address;
  uint16_t deviceId;
  std::string modelName;
  std::string configSpace;
  CellMap cells;
};

void checkGpuKeys(const JsonCursor& gpu) {
  gpu.allowKeys(kGpuKeys);
  checkLists(gpu);
  checkRows(gpu, "bars", {"size", "prefetchable", "bits"});
  if (const auto link = gpu.find("link")) link->allowKeys({"speed", "max_speed", "width", "max_width"});
  if (const auto subsystem = gpu.find("subsystem")) subsystem->allowKeys({"vendor", "device"});
  const auto mpc = gpu.find("mpc");
  if (!mpc || mpc->value().is_null()) return;
  mpc->allowKeys({"profiles", "configurations", "current", "instances"});
  checkRows(*mpc, "profiles", {"id", "name", "cores", "memory"});
  checkRows(*mpc, "configurations", {"id", "name", "profiles"});
  const auto instances = mpc->find("instances");
  if (!instances) return;
  for (const JsonCursor& instance : instances->elements()) {
    instance.allowKeys(kInstanceKeys);
    checkLists(instance);
  }
}

uint32_t GpuReader::takeNumber(const JsonCursor& gpu, std::string_view key, uint64_t copy,
                               std::vector<uint32_t>& used, uint32_t first) const {
  const auto given = gpu.find(key);
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

void GpuReader::readFunction(const JsonCursor& gpu, const JsonCursor& entry, uint64_t copy,
                             PciFunction& function) const {
  const Model model = readModel(gpu);
  const Address address = readAddress(gpu, copy, host.functions.size());
  function.address = address.text();
  for (const PciFunction& other : host.functions) {
    if (other.address == function.address) {
      entry.failWith("the address " + function.address + " is taken by another GPU");
    }
  }
  function.upstream = defaultUpstream(address);
  if (const auto upstream = gpu.find("upstream")) {
    function.upstream.clear();
    for (const JsonCursor& bridge : upstream->elements()) {
      Address parsed;
      const bool isRoot = function.upstream.empty();
      const std::string name = bridge.text();
      if (isRoot ? !name.starts_with("pci") : !parseAddress(name, parsed)) {
        bridge.fail(isRoot ? "a host bridge such as \"pci0000:40\"" : "a PCI address");
      }
      function.upstream.push_back(name);
    }
    if (function.upstream.empty()) upstream->fail("at least a host bridge");
  }
  function.deviceId = model.deviceId;
  function.subsystemDeviceId = model.deviceId;
  if (const auto subsystem = gpu.find("subsystem")) {
    if (const auto vendor = subsystem->find("vendor")) {
      function.subsystemVendorId = static_cast<uint16_t>(vendor->number());
    }
    if (const auto device = subsystem->find("device")) {
      function.subsystemDeviceId = static_cast<uint16_t>(device->number());
    }
  }
  function.classCode = static_cast<uint32_t>(gpu.require("class").number() & 0xFFFFFF);
  function.revision = static_cast<uint8_t>(gpu.require("revision").whole(0, 255));
  const JsonCursor link = gpu.require("link");
  function.current = readLink(link, "speed", "width");
  function.highest = readLink(link, "max_speed", "max_width");
  function.hasPcieCapability = gpu.require("pcie_capability").flag();
  const JsonCursor numa = gpu.require("numa_node");
  if (!numa.value().is_number_integer() || numa.value().get<int64_t>() < -1) numa.fail("a NUMA node, or -1");
  function.numaNode = numa.value().get<int>();
  const JsonCursor cpus = gpu.require("cpus");
  if (!isCpuList(cpus.text())) cpus.fail("a list of CPUs such as \"0-15,32-47\"");
  function.cpus = cpus.text();
  if (const auto physfn = gpu.find("physfn")) function.isVirtualFunction = physfn->flag();
  readBars(gpu, function);
  placeBars(function, host.functions.size());
}

// Completes the cells of a device with what follows from its place, and makes its nodes.
void GpuReader::addNode(Device& device, const JsonCursor& gpu, uint64_t copy) {
  CellMap& cells = device.cells;
  const auto keep = [&](SimValue value, uint64_t number) {
    cells.try_emplace({static_cast<uint16_t>(value), 0}, Cell{.number = number});
  };
  const auto keepText = [&](SimValue value, const std::string& text) {
    cells.try_emplace({static_cast<uint16_t>(value), 0}, Cell{.kind = SIM_CELL_BLOB, .blob = text});
  };
  const bool hasGraphics = device.kind != SIM_NODE_PARENT;
  PciFunction& function = host.functions.back();
  uint32_t card = kNone16;
  uint32_t render = kNone16;
  if (hasGraphics) {
    card = takeNumber(gpu, "card", copy, cardIds, 0);
    render = takeNumber(gpu, "render", copy, renderIds, kFirstRender);
    function.cardIds.push_back(card);
    function.renderIds.push_back(render);
  }
  function.miscIds.push_back(device.misc);

  const FamilyTraits& traits = traitsOf(device.family);
  addAlias(cells, SIM_CLOCK, traits.gpuClocks.front());
  addAlias(cells, SIM_TEMPERATURE, traits.sensors.front());
  keep(SIM_MISC_ID, device.misc);
  keep(SIM_CARD_ID, card);
  keep(SIM_RENDER_ID, render);
  const uint64_t cores = cells[{SIM_CORE_COUNT, 0}].number;
  keep(SIM_CORE_MASK, cores < 64 ? (uint64_t{1} << cores) - 1 : ~uint64_t{0});
  keep(SIM_ADDRESS, device.address.packed());
  keep(SIM_DEVICE_TYPE, device.kind == SIM_NODE_PLAIN ? 0 : device.kind == SIM_NODE_PARENT ? 1 : 2);
  keepText(SIM_NAME, device.modelName);
  keepText(SIM_CONFIG_SPACE, device.configSpace);
  keepText(SIM_SERIAL_NUMBER, "OV" + std::to_string(100000 + host.functions.size()));
  keep(SIM_SLOT_NUMBER, host.functions.size());
  keepText(SIM_SLOT_NAME, "SLOT" + std::to_string(host.functions.size()));
  keep(SIM_EFUSE_START, traits.efuseStartBit);
  keep(SIM_EFUSE_BITS, 32 * kEfuseWords);
  if (!cells.contains({SIM_EFUSE_WORDS, 0})) {
    const auto words = makeEfuse(device.family, device.deviceId, device.efuse);
    setArray(cells, SIM_EFUSE_WORDS, {words.begin(), words.end()});
  }

  const size_t owner = host.nodes.size();
  host.nodes.push_back({device.kind, device.misc, owner, std::move(cells)});
  if (hasGraphics) {
    host.nodes.push_back({SIM_NODE_CARD, card, owner, {}});
    host.nodes.push_back({SIM_NODE_RENDER, render, owner, {}});
  }
}

void GpuReader::addInstances(const Device& parent, size_t parentNode, const JsonCursor& mpc,
                             const json& common) {
  std::vector<uint32_t> profiles;
  if (const auto current = currentConfiguration(mpc)) profiles = profileIdsOf(*current);
  const auto given = mpc.find("instances");
  const std::vector<JsonCursor> entries = given ? given->elements() : std::vector<JsonCursor>();
  if (given) profiles.resize(entries.size(), profiles.empty() ? 0 : profiles.back());
  const json& defaults = defaultsOf(parent.family)["values"];

  for (size_t i = 0; i < profiles.size(); ++i) {
    json merged = common;
    if (given) mergeInto(merged, entries[i].value());
    const JsonCursor gpu(merged, mpc.file(), given ? entries[i].path() : mpc.path());
    const auto ownProfile = gpu.find("profile");
    const uint64_t id = ownProfile ? ownProfile->whole(0, 255) : profiles[i];
    const JsonCursor profile = profileById(mpc, id, ownProfile ? *ownProfile : mpc);

    Device device = parent;
    device.kind = SIM_NODE_INSTANCE;
    device.misc = takeNumber(gpu, "misc", 0, miscIds, 0);
    CellMap& cells = device.cells;
    cells.clear();
    setProcesses(gpu, cells, host);
    setDisplays(gpu, cells);
    setVpuCores(gpu, cells);
    readValues(gpu.require("values"), defaults, cells);
    setNumber(cells, SIM_MEMORY_TOTAL, profile.require("memory").number() << 20);
    setNumber(cells, SIM_CORE_COUNT, profile.require("cores").number());
    setNumber(cells, SIM_MPC_CAPABLE, 1);
    setNumber(cells, SIM_SABLINK_CAPABLE, 0);
    setNumber(cells, SIM_PARENT_MISC_ID, parent.misc);
    setProfileRow(cells, profile, SIM_OWN_PROFILE_ID, SIM_OWN_PROFILE_NAME, SIM_OWN_PROFILE_CORES,
                  SIM_OWN_PROFILE_MEMORY, i << 8, 0);
    // What is said of the instance itself comes before what its profile makes it.
    const auto overrides = given ? entries[i].find("values") : std::nullopt;
    if (overrides) readValues(*overrides, defaults, cells);

    CellMap& parentCells = host.nodes[parentNode].cells;
    setNumber(parentCells, SIM_INSTANCE_MISC_ID, device.misc, SIM_KEY(0, 0, 0, i));
    setNumber(parentCells, SIM_INSTANCE_INDEX, i, SIM_KEY(0, 0, 0, i));
    addNode(device, gpu, 0);
  }
  setNumber(host.nodes[parentNode].cells, SIM_INSTANCE_COUNT, profiles.size());
}

void GpuReader::read(const JsonCursor& entry, const json& defaults, uint64_t copy) {
  // The model decides on the family, and the family on everything that is not said.
  json merged = defaults;
  mergeInto(merged, entry.value());
  const Model model = readModel(JsonCursor(merged, entry.file(), entry.path()));
  Device device{};
  device.family = familyOf(model);
  device.modelName = model.name;
  device.deviceId = model.deviceId;

  json common = defaultsOf(device.family);
  mergeInto(common, defaults);
  merged = common;
  mergeInto(merged, entry.value());
  const JsonCursor gpu(merged, entry.file(), entry.path());

  PciFunction function;
  readFunction(gpu, entry, copy, function);
  parseAddress(function.address, device.address);
  device.configSpace = makeConfigSpace(function);
  device.efuse = {0x1000000 + host.functions.size() * 0x1001, 0x111, 3, 1};
  if (const auto efuse = gpu.find("efuse")) {
    const auto fields = efuse->elements();
    if (fields.size() != device.efuse.size()) efuse->fail("the four fields 0 to 3");
    for (size_t i = 0; i < fields.size(); ++i) device.efuse[i] = fields[i].number();
  }
  const auto mpcKey = gpu.find("mpc");
  const auto mpc = mpcKey && !mpcKey->value().is_null() ? mpcKey : std::nullopt;
  device.kind = mpc ? SIM_NODE_PARENT : SIM_NODE_PLAIN;
  device.misc = takeNumber(gpu, "misc", copy, miscIds, 0);

  setProcesses(gpu, device.cells, host);
  setDisplays(gpu, device.cells);
  setVpuCores(gpu, device.cells);
  readValues(gpu.require("values"), defaultsOf(device.family)["values"], device.cells);
  host.functions.push_back(std::move(function));
  if (!mpc) {
    addNode(device, gpu, copy);
    return;
  }
  setNumber(device.cells, SIM_MPC_CAPABLE, 1);
  setMpcLists(*mpc, device.cells);
  const size_t parentNode = host.nodes.size();
  addNode(device, gpu, copy);
  addInstances(device, parentNode, *mpc, common);
}
