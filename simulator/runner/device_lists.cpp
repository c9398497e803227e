#include "device_lists.h"

#include <array>

#include "value_reader.h"
#include "vpu_lists.h"

namespace {

uint64_t readCause(const JsonCursor& page) {
  const JsonCursor place = page.require("cause");
  return place.value().is_string() ? chooseFrom(place, {"single", "double"}) : place.whole(0, 1);
}

// GPU shares of a process, as a row of the samples.
void addSample(const JsonCursor& process, uint64_t pid, uint64_t kind, uint64_t row, CellMap& cells) {
  const JsonCursor shares = process.require("utilization");
  shares.allowKeys({"gpu", "memory", "encoder", "decoder", "timestamp"});
  const uint64_t key = SIM_KEY(0, 0, 0, row);
  const auto set = [&](const char* name, SimValue value, uint64_t otherwise) {
    const auto place = shares.find(name);
    if (place) {
      readValue(*place, value, key, cells);
    } else {
      setNumber(cells, value, otherwise, key);
    }
  };
  constexpr uint64_t kEndOfWindow = 2'000'000'000;
  const auto containerPid = process.find("container_pid");
  setNumber(cells, SIM_SAMPLE_PID, pid, key);
  setNumber(cells, SIM_SAMPLE_KIND, kind, key);
  if (containerPid) setNumber(cells, SIM_SAMPLE_CONTAINER_PID, containerPid->whole(0, 0xFFFFFFFF), key);
  set("gpu", SIM_SAMPLE_GPU, 0);
  set("memory", SIM_SAMPLE_MEMORY, 0);
  set("encoder", SIM_SAMPLE_ENCODER, 0);
  set("decoder", SIM_SAMPLE_DECODER, 0);
  set("timestamp", SIM_SAMPLE_TIMESTAMP, kEndOfWindow);
}

void setProcesses(const JsonCursor& device, CellMap& cells, std::vector<uint64_t>& pids) {
  const auto rows = device.find("processes");
  if (!rows) return;
  uint64_t row = 0;
  uint64_t samples = 0;
  for (const JsonCursor& process : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, row++);
    const uint64_t pid = process.require("pid").whole(0, 0xFFFFFFFF);
    const auto kindPlace = process.find("kind");
    const uint64_t kind = kindPlace ? chooseFrom(*kindPlace, {"graphics", "compute"}) : 1;
    const auto systemMemory = process.find("system_memory");
    // The list has pids of the caller's namespace; a sample is asked for one or the other.
    const auto containerPid = process.find("container_pid");
    const uint64_t callersPid = containerPid ? containerPid->whole(0, 0xFFFFFFFF) : pid;
    setNumber(cells, SIM_PROCESS_PID, callersPid, key);
    setNumber(cells, SIM_PROCESS_KIND, kind, key);
    setNumber(cells, SIM_PROCESS_GPU_MEMORY, process.require("gpu_memory").number(), key);
    setNumber(cells, SIM_PROCESS_SYSTEM_MEMORY, systemMemory ? systemMemory->number() : 0, key);
    if (process.find("utilization")) addSample(process, pid, kind, samples++, cells);
    pids.push_back(pid);
    if (callersPid != pid) pids.push_back(callersPid);
  }
  setNumber(cells, SIM_PROCESS_COUNT, row);
  setNumber(cells, SIM_SAMPLE_COUNT, samples);
}

void setDisplays(const JsonCursor& device, CellMap& cells) {
  const auto rows = device.find("displays");
  if (!rows) return;
  uint64_t row = 0;
  for (const JsonCursor& display : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, row++);
    setNumber(cells, SIM_DISPLAY_TYPE,
              chooseFrom(display.require("type"), {"DP", "EDP", "VGA", "HDMI", "LVDS", "other"}), key);
    readValue(display.require("h_res"), SIM_DISPLAY_H_RES, key, cells);
    readValue(display.require("v_res"), SIM_DISPLAY_V_RES, key, cells);
    readValue(display.require("pixel_clock"), SIM_DISPLAY_PIXEL_CLOCK, key, cells);
  }
  setNumber(cells, SIM_DISPLAY_COUNT, row);
}

void setFans(const JsonCursor& device, CellMap& cells) {
  const auto rows = device.find("fans");
  if (!rows) return;
  uint64_t row = 0;
  for (const JsonCursor& fan : rows->elements()) {
    readValue(fan.require("percent"), SIM_FAN_SPEED, SIM_KEY(row, 0, 0, 0), cells);
    readValue(fan.require("rpm"), SIM_FAN_SPEED, SIM_KEY(row, 1, 0, 0), cells);
    if (const auto duty = fan.find("duty")) readValue(*duty, SIM_FAN_DUTY, row, cells);
    if (const auto highest = fan.find("max_duty")) readValue(*highest, SIM_FAN_DUTY_MAX, row, cells);
    ++row;
  }
  setNumber(cells, SIM_FAN_COUNT, row);
}

// ---- pages of the memory

uint64_t readLocation(const JsonCursor& page) {
  const auto place = page.find("location");
  if (!place) return 0;
  if (!place->value().is_object()) return place->number();
  place->allowKeys({"channel", "bank", "row"});
  return place->require("channel").whole(0, 0xFF) | place->require("bank").whole(0, 0xFF) << 8 |
         place->require("row").whole(0, 0xFFFFFFFF) << 16;
}

struct PageValues {
  SimValue address;
  SimValue timestamp;
  SimValue cause;
  SimValue location;
  SimValue errors;
};
constexpr PageValues kRetired{SIM_RETIRED_ADDRESS, SIM_RETIRED_TIMESTAMP, SIM_RETIRED_CAUSE,
                              SIM_RETIRED_LOCATION, SIM_RETIRED_ERRORS};
constexpr PageValues kRetiring{SIM_RETIRING_ADDRESS, SIM_RETIRING_TIMESTAMP, SIM_RETIRING_CAUSE,
                               SIM_RETIRING_LOCATION, SIM_RETIRING_ERRORS};

void setPage(const JsonCursor& page, const PageValues& values, uint64_t cause, uint64_t key, CellMap& cells) {
  const auto time = page.find("time");
  const auto errors = page.find("errors");
  setNumber(cells, values.address, page.require("address").number(), key);
  setNumber(cells, values.timestamp, time ? static_cast<uint64_t>(time->moment()) : 0, key);
  setNumber(cells, values.cause, cause, key);
  setNumber(cells, values.location, readLocation(page), key);
  setNumber(cells, values.errors, errors ? errors->number() : 1, key);
}

// Pages that wait get room among the retired ones, for the reset that they wait for.
void setPages(const JsonCursor& device, CellMap& cells) {
  std::array<uint64_t, 2> counts{};
  if (const auto rows = device.find("retired_pages")) {
    for (const JsonCursor& page : rows->elements()) {
      const uint64_t cause = readCause(page);
      setPage(page, kRetired, cause, SIM_KEY(cause, counts.at(cause), 0, 0), cells);
      ++counts[cause];
    }
  }
  for (size_t cause = 0; cause < counts.size(); ++cause) {
    setNumber(cells, SIM_RETIRED_COUNT, counts[cause], cause);
  }
  uint64_t pending = 0;
  if (const auto rows = device.find("pending_pages")) {
    for (const JsonCursor& page : rows->elements()) {
      const uint64_t cause = readCause(page);
      const auto last = page.find("last_error");
      setPage(page, kRetiring, cause, pending, cells);
      setNumber(cells, SIM_RETIRING_LAST_ERROR, last ? static_cast<uint64_t>(last->moment()) : 0, pending);
      const uint64_t room = SIM_KEY(cause, counts.at(cause), 0, 0);
      for (const SimValue value :
           {kRetired.address, kRetired.timestamp, kRetired.cause, kRetired.location, kRetired.errors}) {
        cells[{static_cast<uint16_t>(value), room}] = Cell{.kind = SIM_CELL_NONE};
      }
      ++counts[cause];
      ++pending;
    }
  }
  setNumber(cells, SIM_RETIRING_COUNT, pending);
}

}  // namespace

uint64_t chooseFrom(const JsonCursor& place, const std::vector<std::string_view>& names) {
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

void checkRows(const JsonCursor& gpu, std::string_view key, const std::vector<std::string_view>& keys) {
  const auto rows = gpu.find(key);
  if (!rows) return;
  for (const JsonCursor& row : rows->elements()) {
    if (!row.value().is_null()) row.allowKeys(keys);
  }
}

void checkLists(const JsonCursor& device) {
  checkRows(device, "processes",
            {"pid", "kind", "gpu_memory", "system_memory", "container_pid", "utilization"});
  checkRows(device, "displays", {"type", "h_res", "v_res", "pixel_clock"});
  checkRows(device, "fans", {"percent", "rpm", "duty", "max_duty"});
  checkRows(device, "retired_pages", {"cause", "address", "time", "location", "errors"});
  checkRows(device, "pending_pages", {"cause", "address", "time", "location", "errors", "last_error"});
  checkVpuLists(device);
  if (const auto values = device.find("values")) checkValueNames(*values);
}

std::vector<uint64_t> setLists(const JsonCursor& device, CellMap& cells) {
  std::vector<uint64_t> pids;
  setProcesses(device, cells, pids);
  setDisplays(device, cells);
  setFans(device, cells);
  setPages(device, cells);
  setVpuLists(device, cells, pids);
  return pids;
}
