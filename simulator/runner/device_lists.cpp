#include "device_lists.h"

#include "value_reader.h"

namespace {

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

std::vector<uint64_t> setProcesses(const JsonCursor& device, CellMap& cells) {
  std::vector<uint64_t> pids;
  const auto rows = device.find("processes");
  if (!rows) return pids;
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
    pids.push_back(pid);
  }
  setNumber(cells, SIM_PROCESS_COUNT, row);
  return pids;
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

}  // namespace

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

std::vector<uint64_t> setLists(const JsonCursor& device, CellMap& cells) {
  setDisplays(device, cells);
  setVpuCores(device, cells);
  return setProcesses(device, cells);
}
