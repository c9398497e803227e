#include "mpc_plan.h"

#include <algorithm>

#include "device_lists.h"
#include "host_document.h"
#include "mpc_reader.h"
#include "value_reader.h"

using nlohmann::json;

MpcPlan::MpcPlan(const Device& sharedDevice, const json& gpuEntry, const json& common,
                 const JsonCursor& where, uint64_t copy)
    : device(sharedDevice),
      entry(gpuEntry),
      defaults(common),
      file(where.file()),
      path(where.path()),
      copyNumber(copy),
      current(currentState(mpc())) {}

JsonCursor MpcPlan::instanceEntry(const json& merged, size_t index) const {
  const auto given = mpc().find("instances");
  return {merged, file, given ? given->elements()[index].path() : mpc().path()};
}

json MpcPlan::mergedInstance(size_t index) const {
  json merged = defaults;
  if (const auto given = mpc().find("instances")) mergeInto(merged, given->elements()[index].value());
  return merged;
}

std::vector<uint32_t> MpcPlan::profilesIn(uint32_t state) const {
  std::vector<uint32_t> profiles = profilesOf(mpc(), state);
  if (describesInstances(state)) {
    profiles.resize(mpc().require("instances").elements().size(), profiles.empty() ? 0 : profiles.back());
  }
  return profiles;
}

bool MpcPlan::canBeSet(uint32_t state) const {
  const std::vector<uint32_t> profiles = profilesIn(state);
  return state == current ||
         std::all_of(profiles.begin(), profiles.end(), [&](uint32_t id) { return hasProfile(mpc(), id); });
}

void MpcPlan::addSlot(Host& host, NumberPool& pool, const JsonCursor& from, bool present) {
  Slot slot;
  slot.numbers.misc = pool.takeMisc(from, 0);
  pool.takeGraphics(from, 0, slot.numbers);
  slot.node = addNodes(host, device, SIM_NODE_INSTANCE, slot.numbers, present);
  slots.push_back(slot);
}

void MpcPlan::begin(Host& host, NumberPool& pool) {
  PciFunction& function = host.functions[device.function];
  function.mpcState = current;
  own.misc = pool.takeMisc(gpu(), copyNumber);
  if (current == SIM_MPC_OFF) {
    pool.takeGraphics(gpu(), copyNumber, own);
    function.ownNode = addNodes(host, device, SIM_NODE_PLAIN, own, true);
    return;
  }
  function.ownNode = addNodes(host, device, SIM_NODE_PARENT, own, true);
  const size_t count = profilesIn(current).size();
  for (size_t i = 0; i < count; ++i) {
    if (describesInstances(current)) {
      const json merged = mergedInstance(i);
      addSlot(host, pool, instanceEntry(merged, i), true);
    } else {
      const json nothing = json::object();
      addSlot(host, pool, {nothing, file, path}, true);
    }
  }
}

CellMap MpcPlan::ownCells(const char* moreValues) const {
  CellMap cells;
  const json& familyValues = defaultsOf(device.family)["values"];
  setLists(gpu(), cells);
  const auto more = mpc().find(moreValues);
  json values = gpu().require("values").value();
  if (more) mergeInto(values, more->value());
  readValues({values, file, more ? more->path() : path + ".values"}, familyValues, cells);
  setNumber(cells, SIM_MPC_CAPABLE, 1);
  return cells;
}

void MpcPlan::addParentFace(Host& host, uint32_t state) const {
  CellMap cells = ownCells("parent_values");
  setMpcLists(mpc(), cells);
  setCurrent(mpc(), state, cells);
  const size_t count = profilesIn(state).size();
  for (size_t i = 0; i < count; ++i) {
    setNumber(cells, SIM_INSTANCE_MISC_ID, slots[i].numbers.misc, SIM_KEY(0, 0, 0, i));
    setNumber(cells, SIM_INSTANCE_INDEX, i, SIM_KEY(0, 0, 0, i));
  }
  setNumber(cells, SIM_INSTANCE_COUNT, count);
  completeCells(device, SIM_NODE_PARENT, {.misc = own.misc}, cells);
  host.faces.push_back({device.function,
                        state,
                        host.functions[device.function].ownNode,
                        SIM_NODE_PARENT,
                        std::move(cells),
                        {}});
}

void MpcPlan::addInstanceFaces(Host& host, uint32_t state) const {
  const json& familyValues = defaultsOf(device.family)["values"];
  const bool described = describesInstances(state);
  const std::vector<uint32_t> profiles = profilesIn(state);
  for (size_t i = 0; i < profiles.size(); ++i) {
    const json merged = described ? mergedInstance(i) : defaults;
    const JsonCursor instance = described ? instanceEntry(merged, i) : JsonCursor(merged, file, path);
    const auto ownProfile = instance.find("profile");
    const JsonCursor profile = profileById(mpc(), ownProfile ? ownProfile->whole(0, 255) : profiles[i],
                                           ownProfile ? *ownProfile : mpc());
    CellMap cells;
    const std::vector<uint64_t> pids = setLists(instance, cells);
    host.unknownPids.insert(host.unknownPids.end(), pids.begin(), pids.end());
    readValues(instance.require("values"), familyValues, cells);
    setNumber(cells, SIM_MPC_CAPABLE, 1);
    setNumber(cells, SIM_SABLINK_CAPABLE, 0);
    setNumber(cells, SIM_PARENT_MISC_ID, own.misc);
    setOwnProfile(profile, i, cells);
    // What is said of the instance itself comes before what its profile makes it.
    if (described) {
      const auto overrides = mpc().require("instances").elements()[i].find("values");
      if (overrides) readValues(*overrides, familyValues, cells);
    }
    const Slot& slot = slots[i];
    completeCells(device, SIM_NODE_INSTANCE, slot.numbers, cells);
    host.faces.push_back({device.function,
                          state,
                          slot.node,
                          SIM_NODE_INSTANCE,
                          std::move(cells),
                          {slot.node + 1, slot.node + 2}});
  }
}

void MpcPlan::finish(Host& host, NumberPool& pool) {
  std::vector<uint32_t> states = configurationIds(mpc());
  std::erase_if(states, [&](uint32_t state) { return !canBeSet(state); });
  size_t most = 0;
  for (const uint32_t state : states) most = std::max(most, profilesIn(state).size());
  const json nothing = json::object();
  while (slots.size() < most) addSlot(host, pool, {nothing, file, path}, false);

  const size_t ownNode = host.functions[device.function].ownNode;
  std::vector<size_t> graphics{ownNode + 1, ownNode + 2};
  if (own.card == kNoNumber) {
    // While the GPU is a parent these wait for the mode to be switched off.
    pool.takeGraphics(gpu(), copyNumber, own);
    graphics = {host.nodes.size(), host.nodes.size() + 1};
    host.nodes.push_back({SIM_NODE_CARD, own.card, ownNode, device.function, {}, false});
    host.nodes.push_back({SIM_NODE_RENDER, own.render, ownNode, device.function, {}, false});
  }
  CellMap plain = ownCells("plain_values");
  completeCells(device, SIM_NODE_PLAIN, own, plain);
  host.faces.push_back({device.function, SIM_MPC_OFF, ownNode, SIM_NODE_PLAIN, std::move(plain), graphics});
  addParentFace(host, SIM_MPC_UNSET);
  for (const uint32_t state : states) {
    addParentFace(host, state);
    addInstanceFaces(host, state);
  }
}
