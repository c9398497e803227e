#include "vpu_lists.h"

#include "device_lists.h"
#include "value_reader.h"

namespace {

constexpr uint64_t kBothKinds = 2;

const std::vector<std::string_view> kKinds{"encoder", "decoder", "both"};
const std::vector<std::string_view> kCodecs{"AVC",  "VC1", "MPEG2", "MPEG4", "H263", "DIV3",
                                            "RV",   "AVS", "RSVD1", "THO",   "VP3",  "VP8",
                                            "HEVC", "VP9", "AVS2",  "RSVD2", "AV1"};

struct Core {
  uint64_t kind;
  uint64_t instances;
};

std::vector<Core> setCores(const JsonCursor& device, CellMap& cells) {
  std::vector<Core> cores;
  std::vector<uint32_t> clocks;
  const auto rows = device.find("vpu_cores");
  if (!rows) return cores;
  for (const JsonCursor& row : rows->elements()) {
    const uint64_t key = SIM_KEY(0, 0, 0, cores.size());
    const auto clock = row.find("clock");
    const bool hasClock = clock && clock->value() != "n/a";
    const Core core{chooseFrom(row.require("kind"), kKinds), row.require("instances").whole(0, 65535)};
    setNumber(cells, SIM_VPU_CORE_KIND, core.kind, key);
    setNumber(cells, SIM_VPU_CORE_THREADS, row.require("threads").whole(0, 255), key);
    setNumber(cells, SIM_VPU_CORE_INSTANCES, core.instances, key);
    clocks.push_back(hasClock ? static_cast<uint32_t>(clock->whole(0, 0xFFFFFFFF)) : 0xFFFFFFFF);
    if (hasClock) {
      setNumber(cells, SIM_VPU_CORE_CLOCK, clocks.back(), key);
    } else {
      cells[{SIM_VPU_CORE_CLOCK, key}] = Cell{.kind = SIM_CELL_NA};
    }
    cores.push_back(core);
  }
  setNumber(cells, SIM_VPU_CORE_COUNT, cores.size());
  setArray(cells, SIM_VPU_UTILIZATION, std::vector<uint32_t>(cores.size(), 0));
  setArray(cells, SIM_VPU_CLOCK, clocks);
  return cores;
}

// A session holds one instance of a core.
uint64_t readPlace(const JsonCursor& session, const std::vector<Core>& cores, const CellMap& cells) {
  const JsonCursor corePlace = session.require("core");
  const uint64_t core = corePlace.whole(0, 65535);
  if (core >= cores.size()) corePlace.failWith("there is no such core among vpu_cores");
  if (cores[core].kind == kBothKinds)
    corePlace.failWith("a core of both kinds has no sessions that are listed");
  const JsonCursor instancePlace = session.require("instance");
  const uint64_t instance = instancePlace.whole(0, 65535);
  if (instance >= cores[core].instances) {
    instancePlace.failWith("the core has " + std::to_string(cores[core].instances) + " instances");
  }
  const uint64_t key = SIM_KEY(core, instance, 0, 0);
  if (cells.contains({SIM_VPU_SESSION_STATE, key})) session.failWith("the instance has a session already");
  return key;
}

}  // namespace

void checkVpuLists(const JsonCursor& device) {
  checkRows(device, "vpu_cores", {"kind", "threads", "instances", "clock"});
  checkRows(device, "vpu_sessions",
            {"core", "instance", "pid", "codec", "h_res", "v_res", "fps", "bitrate", "vgpu", "state"});
}

void setVpuLists(const JsonCursor& device, CellMap& cells, std::vector<uint64_t>& pids) {
  const std::vector<Core> cores = setCores(device, cells);
  const auto rows = device.find("vpu_sessions");
  if (!rows) return;
  for (const JsonCursor& session : rows->elements()) {
    const uint64_t key = readPlace(session, cores, cells);
    const auto set = [&](const char* name, SimValue value, uint64_t otherwise) {
      const auto place = session.find(name);
      if (place) {
        readValue(*place, value, key, cells);
      } else {
        setNumber(cells, value, otherwise, key);
      }
    };
    const uint64_t pid = session.require("pid").whole(0, 0xFFFFFFFF);
    setNumber(cells, SIM_VPU_SESSION_PID, pid, key);
    setNumber(cells, SIM_VPU_SESSION_CODEC, chooseFrom(session.require("codec"), kCodecs), key);
    set("state", SIM_VPU_SESSION_STATE, 1);
    set("h_res", SIM_VPU_SESSION_H_RES, 1920);
    set("v_res", SIM_VPU_SESSION_V_RES, 1080);
    set("fps", SIM_VPU_SESSION_FPS, 30);
    set("bitrate", SIM_VPU_SESSION_BITRATE, 4000);
    if (const auto guest = session.find("vgpu")) {
      setNumber(cells, SIM_VPU_SESSION_VGPU, guest->whole(1, 9999), key);
    }
    pids.push_back(pid);
  }
}
