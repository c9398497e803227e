#include "gpu_reader.h"

#include "config_space.h"
#include "device_lists.h"
#include "device_uuid.h"
#include "event_reader.h"
#include "host_document.h"
#include "mediated_reader.h"
#include "mpc_reader.h"
#include "pci_reader.h"
#include "value_reader.h"

using nlohmann::json;

namespace {

const std::vector<std::string_view> kGpuKeys{
    "model",           "device_id",     "address",   "upstream", "misc",       "card",      "render",
    "class",           "revision",      "subsystem", "link",     "numa_node",  "cpus",      "bars",
    "pcie_capability", "efuse",         "processes", "displays", "fans",       "vpu_cores", "vpu_sessions",
    "retired_pages",   "pending_pages", "mpc",       "physfn",   "vgpu_types", "vgpus",     "guest_type",
    "xid_records",     "events",        "values",    "repeat"};

std::array<uint64_t, 4> readEfuse(const JsonCursor& gpu, size_t index) {
  std::array<uint64_t, 4> fields = {0x1000000 + index * 0x1001, 0x111, 3, 1};
  const auto given = gpu.find("efuse");
  if (!given) return fields;
  const auto elements = given->elements();
  if (elements.size() != fields.size()) given->fail("the four fields 0 to 3");
  for (size_t i = 0; i < fields.size(); ++i) fields[i] = elements[i].number();
  return fields;
}

}  // namespace

void checkGpuKeys(const JsonCursor& gpu) {
  gpu.allowKeys(kGpuKeys);
  checkLists(gpu);
  checkRows(gpu, "bars", {"size", "prefetchable", "bits"});
  checkMediatedKeys(gpu);
  checkEventKeys(gpu);
  if (const auto link = gpu.find("link")) link->allowKeys({"speed", "max_speed", "width", "max_width"});
  if (const auto subsystem = gpu.find("subsystem")) subsystem->allowKeys({"vendor", "device"});
  const auto mpc = gpu.find("mpc");
  if (mpc && !mpc->value().is_null()) checkMpcKeys(*mpc);
}

void GpuReader::checkAddress(const JsonCursor& entry, const PciFunction& function) const {
  for (const PciFunction& other : host.functions) {
    if (other.place.address == function.place.address) {
      entry.failWith("the address " + function.place.address + " is taken by another GPU");
    }
  }
}

void GpuReader::read(const JsonCursor& entry, const json& defaults, uint64_t copy) {
  // The model decides on the family, and the family on everything that is not said.
  json merged = defaults;
  mergeInto(merged, entry.value());
  const Model model = readModel(JsonCursor(merged, entry.file(), entry.path()));
  Device device;
  device.family = familyOf(model);
  device.modelName = model.name;
  device.deviceId = model.deviceId;
  device.function = host.functions.size();

  json common = defaultsOf(device.family);
  mergeInto(common, defaults);
  merged = common;
  mergeInto(merged, entry.value());
  const JsonCursor gpu(merged, entry.file(), entry.path());

  PciFunction function = readFunction(gpu, copy, device.function);
  checkAddress(entry, function);
  CellMap guests;
  readMediated(gpu, function, guests, host.unknownPids);
  function.family = device.family;
  device.address = parseAddress(function.place.address)->packed();
  device.configSpace = makeConfigSpace(function);
  device.efuse = readEfuse(gpu, device.function);
  host.functions.push_back(std::move(function));

  const std::vector<uint64_t> pids = [&] {
    CellMap ignored;
    return setLists(gpu, ignored);
  }();
  host.unknownPids.insert(host.unknownPids.end(), pids.begin(), pids.end());
  const auto mpc = gpu.find("mpc");
  uint32_t misc = 0;
  if (mpc && !mpc->value().is_null()) {
    if (!guests.empty()) gpu.require("vgpus").failWith("a GPU with an MPC mode carries no vGPUs here");
    plans.push_back(std::make_unique<MpcPlan>(device, merged, common, entry, copy));
    plans.back()->begin(host, pool);
  } else {
    NodeNumbers numbers;
    numbers.misc = pool.takeMisc(gpu, copy);
    pool.takeGraphics(gpu, copy, numbers);
    CellMap cells = std::move(guests);
    setLists(gpu, cells);
    readValues(gpu.require("values"), defaultsOf(device.family)["values"], cells);
    completeCells(device, SIM_NODE_PLAIN, numbers, cells);
    const size_t node = addNodes(host, device, SIM_NODE_PLAIN, numbers, true);
    host.nodes[node].cells = std::move(cells);
    host.functions[device.function].ownNode = node;
  }
  misc = host.nodes[host.functions[device.function].ownNode].number;
  host.functions[device.function].uuid = deviceUuid(host, device, misc);
  readEvents(gpu, host, device.function);
}

void GpuReader::finish() {
  for (const auto& plan : plans) plan->finish(host, pool);
}
