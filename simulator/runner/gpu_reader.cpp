#include "gpu_reader.h"

#include <algorithm>

#include "config_space.h"
#include "device_lists.h"
#include "efuse.h"
#include "host_document.h"
#include "mpc_reader.h"
#include "pci_reader.h"
#include "value_reader.h"

using nlohmann::json;

namespace {

constexpr uint32_t kNone16 = 0xFFFF;
constexpr uint32_t kFirstRender = 128;

const std::vector<std::string_view> kGpuKeys{
    "model",     "device_id", "address",   "upstream",  "misc",   "card",   "render",          "class",
    "revision",  "subsystem", "link",      "numa_node", "cpus",   "bars",   "pcie_capability", "efuse",
    "processes", "displays",  "vpu_cores", "mpc",       "physfn", "values", "repeat"};

// Id 0 repeats the value that is shown.
void addAlias(CellMap& cells, SimValue value, uint32_t shown) {
  const auto found = cells.find({static_cast<uint16_t>(value), shown});
  if (found != cells.end()) cells.try_emplace({static_cast<uint16_t>(value), 0}, found->second);
}

}  // namespace

// What the devices of one GPU share.
struct GpuReader::Device {
  Family family;
  SimNodeKind kind;
  uint32_t misc;
  std::array<uint64_t, 4> efuse;
  uint64_t address;  // packed
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
  if (mpc && !mpc->value().is_null()) checkMpcKeys(*mpc);
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
  const auto coreCount = cells.find({SIM_CORE_COUNT, 0});
  const uint64_t cores = coreCount == cells.end() ? 0 : coreCount->second.number;
  keep(SIM_CORE_MASK, cores < 64 ? (uint64_t{1} << cores) - 1 : ~uint64_t{0});
  keep(SIM_ADDRESS, device.address);
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
  std::vector<uint32_t> profiles = currentProfiles(mpc);
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
    addProcesses(setLists(gpu, cells));
    readValues(gpu.require("values"), defaults, cells);
    setNumber(cells, SIM_MPC_CAPABLE, 1);
    setNumber(cells, SIM_SABLINK_CAPABLE, 0);
    setNumber(cells, SIM_PARENT_MISC_ID, parent.misc);
    setOwnProfile(profile, i, cells);
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

  PciFunction function = readFunction(gpu, copy, host.functions.size());
  for (const PciFunction& other : host.functions) {
    if (other.address == function.address) {
      entry.failWith("the address " + function.address + " is taken by another GPU");
    }
  }
  device.address = parseAddress(function.address)->packed();
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

  addProcesses(setLists(gpu, device.cells));
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

void GpuReader::addProcesses(const std::vector<uint64_t>& pids) {
  host.unknownPids.insert(host.unknownPids.end(), pids.begin(), pids.end());
}
