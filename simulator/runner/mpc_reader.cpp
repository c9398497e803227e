#include "mpc_reader.h"

#include <algorithm>

#include "device_lists.h"
#include "value_reader.h"

namespace {

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

std::optional<JsonCursor> configurationOf(const JsonCursor& mpc, uint32_t state) {
  for (const JsonCursor& configuration : mpc.require("configurations").elements()) {
    if (configuration.require("id").whole(0, 65534) == state) return configuration;
  }
  return std::nullopt;
}

}  // namespace

void checkMpcKeys(const JsonCursor& mpc) {
  mpc.allowKeys(
      {"enabled", "profiles", "configurations", "current", "instances", "plain_values", "parent_values"});
  for (const char* const key : {"plain_values", "parent_values"}) {
    if (const auto values = mpc.find(key)) checkValueNames(*values);
  }
  checkRows(mpc, "profiles", {"id", "name", "cores", "memory"});
  checkRows(mpc, "configurations", {"id", "name", "profiles"});
  const auto instances = mpc.find("instances");
  if (!instances) return;
  for (const JsonCursor& instance : instances->elements()) {
    instance.allowKeys({"profile", "misc", "card", "render", "values", "processes", "displays", "vpu_cores",
                        "vpu_sessions"});
    checkLists(instance);
  }
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
}

void setCurrent(const JsonCursor& mpc, uint32_t state, CellMap& cells) {
  if (const auto current = configurationOf(mpc, state)) {
    setConfiguration(cells, *current, SIM_CURRENT_ID, SIM_CURRENT_NAME, SIM_CURRENT_SIZE,
                     SIM_CURRENT_PROFILES, 0);
  } else {
    setNumber(cells, SIM_CURRENT_ID, SIM_MPC_UNSET);
    setText(cells, SIM_CURRENT_NAME, "");
    setNumber(cells, SIM_CURRENT_SIZE, 0);
    setArray(cells, SIM_CURRENT_PROFILES, {});
  }
}

uint32_t currentState(const JsonCursor& mpc) {
  const auto enabled = mpc.find("enabled");
  const auto current = mpc.find("current");
  const bool isSet = current && !current->value().is_null();
  if (enabled && !enabled->flag()) {
    if (isSet) current->failWith("the mode is not enabled, so no configuration is set");
    if (const auto instances = mpc.find("instances")) {
      if (!instances->elements().empty()) {
        instances->failWith("the mode is not enabled, so there are no instances");
      }
    }
    return SIM_MPC_OFF;
  }
  if (!isSet) return SIM_MPC_UNSET;
  const auto id = static_cast<uint32_t>(current->whole(0, 65534));
  if (!configurationOf(mpc, id)) current->fail("the id of one of the configurations");
  return id;
}

std::vector<uint32_t> configurationIds(const JsonCursor& mpc) {
  std::vector<uint32_t> ids;
  for (const JsonCursor& configuration : mpc.require("configurations").elements()) {
    const JsonCursor place = configuration.require("id");
    const auto id = static_cast<uint32_t>(place.whole(0, 65534));
    if (std::find(ids.begin(), ids.end(), id) != ids.end())
      place.failWith("the id is taken by another configuration");
    ids.push_back(id);
  }
  return ids;
}

bool hasProfile(const JsonCursor& mpc, uint64_t id) {
  for (const JsonCursor& profile : mpc.require("profiles").elements()) {
    if (profile.require("id").whole(0, 255) == id) return true;
  }
  return false;
}

JsonCursor profileById(const JsonCursor& mpc, uint64_t id, const JsonCursor& asked) {
  for (const JsonCursor& profile : mpc.require("profiles").elements()) {
    if (profile.require("id").whole(0, 255) == id) return profile;
  }
  asked.failWith("there is no profile " + std::to_string(id) + " among mpc.profiles");
}

std::vector<uint32_t> profilesOf(const JsonCursor& mpc, uint32_t state) {
  const auto configuration = configurationOf(mpc, state);
  return configuration ? profileIdsOf(*configuration) : std::vector<uint32_t>();
}

void setOwnProfile(const JsonCursor& profile, uint64_t index, CellMap& cells) {
  setNumber(cells, SIM_MEMORY_TOTAL, profile.require("memory").number() << 20);
  setNumber(cells, SIM_CORE_COUNT, profile.require("cores").number());
  setProfileRow(cells, profile, SIM_OWN_PROFILE_ID, SIM_OWN_PROFILE_NAME, SIM_OWN_PROFILE_CORES,
                SIM_OWN_PROFILE_MEMORY, index << 8, 0);
}
