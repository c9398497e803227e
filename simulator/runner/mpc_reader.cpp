#include "mpc_reader.h"

#include "device_lists.h"
#include "value_reader.h"

namespace {

constexpr uint32_t kNoConfiguration = 0xFFFF;

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

}  // namespace

void checkMpcKeys(const JsonCursor& mpc) {
  mpc.allowKeys({"profiles", "configurations", "current", "instances"});
  checkRows(mpc, "profiles", {"id", "name", "cores", "memory"});
  checkRows(mpc, "configurations", {"id", "name", "profiles"});
  const auto instances = mpc.find("instances");
  if (!instances) return;
  for (const JsonCursor& instance : instances->elements()) {
    instance.allowKeys({"profile", "misc", "card", "render", "values", "processes", "displays", "vpu_cores"});
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
  if (const auto current = currentConfiguration(mpc)) {
    setConfiguration(cells, *current, SIM_CURRENT_ID, SIM_CURRENT_NAME, SIM_CURRENT_SIZE,
                     SIM_CURRENT_PROFILES, 0);
  } else {
    setNumber(cells, SIM_CURRENT_ID, kNoConfiguration);
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

std::vector<uint32_t> currentProfiles(const JsonCursor& mpc) {
  const auto current = currentConfiguration(mpc);
  return current ? profileIdsOf(*current) : std::vector<uint32_t>();
}

void setOwnProfile(const JsonCursor& profile, uint64_t index, CellMap& cells) {
  setNumber(cells, SIM_MEMORY_TOTAL, profile.require("memory").number() << 20);
  setNumber(cells, SIM_CORE_COUNT, profile.require("cores").number());
  setProfileRow(cells, profile, SIM_OWN_PROFILE_ID, SIM_OWN_PROFILE_NAME, SIM_OWN_PROFILE_CORES,
                SIM_OWN_PROFILE_MEMORY, index << 8, 0);
}
