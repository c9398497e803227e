#include "mediated_reader.h"

#include <algorithm>

#include "device_lists.h"
#include "value_reader.h"

namespace {

constexpr uint64_t kMany = 0xFFFFFFFF;

uint64_t countOr(const JsonCursor& entry, const char* key, uint64_t otherwise) {
  const auto place = entry.find(key);
  return place ? place->whole(0, kMany) : otherwise;
}

std::string textOr(const JsonCursor& entry, const char* key, const std::string& otherwise) {
  const auto place = entry.find(key);
  return place ? place->text() : otherwise;
}

VgpuType readType(const JsonCursor& entry) {
  VgpuType type;
  type.id = entry.require("id").whole(1, 65535);
  type.name = entry.require("name").text();
  type.deviceApi = textOr(entry, "device_api", "vfio-pci");
  type.maxResolution = textOr(entry, "max_resolution", "4096x2160");
  type.maxEncodeNum = countOr(entry, "max_encode_num", 2);
  type.maxDecodeNum = countOr(entry, "max_decode_num", 4);
  type.framebuffer = entry.require("framebuffer").whole(0, kMany);
  type.maxInstances = countOr(entry, "max_instances", 8);
  type.maxVirtualDisplay = countOr(entry, "max_ov_virtual_display", 2);
  if (const auto available = entry.find("available")) type.available = available->whole(0, kMany);
  if (const auto description = entry.find("description")) type.description = description->text();
  return type;
}

std::string readUuid(const JsonCursor& place) {
  const std::string uuid = place.text();
  static constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  bool fits = uuid.size() == kForm.size();
  for (size_t i = 0; fits && i < kForm.size(); ++i) {
    const bool isDigit = std::string_view("0123456789abcdef").find(uuid[i]) != std::string_view::npos;
    fits = kForm[i] == '-' ? uuid[i] == '-' : isDigit;
  }
  if (!fits) place.fail("a uuid of lower-case digits");
  return uuid;
}

const VgpuType& typeById(const PciFunction& function, const JsonCursor& place) {
  const uint64_t id = place.whole(1, 65535);
  if (function.vgpuTypes) {
    for (const VgpuType& type : *function.vgpuTypes) {
      if (type.id == id) return type;
    }
  }
  place.failWith("there is no type " + std::to_string(id) + " among vgpu_types");
}

// What the GPU's node answers of the vGPU.
void setGuest(const JsonCursor& entry, const VgpuType& type, uint64_t id, CellMap& cells) {
  const auto set = [&](const char* name, SimValue value, uint64_t otherwise) {
    const auto place = entry.find(name);
    if (place) {
      readValue(*place, value, id, cells);
    } else {
      setNumber(cells, value, otherwise, id);
    }
  };
  set("utilization", SIM_VGPU_UTILIZATION, 0);
  set("memory_total", SIM_VGPU_MEMORY_TOTAL, type.framebuffer << 20);
  set("memory_used", SIM_VGPU_MEMORY_USED, 0);
  set("overcommit", SIM_OVERCOMMIT, 0);
  set("overcommit_memory", SIM_OVERCOMMIT_MEMORY, 0);
}

void readVgpus(const JsonCursor& rows, PciFunction& function, CellMap& cells, std::vector<uint64_t>& pids) {
  for (const JsonCursor& entry : rows.elements()) {
    Vgpu vgpu;
    vgpu.uuid = readUuid(entry.require("uuid"));
    const VgpuType& type = typeById(function, entry.require("type"));
    vgpu.type = type.id;
    const JsonCursor idPlace = entry.require("id");
    vgpu.id = static_cast<int64_t>(idPlace.whole(1, 9999));
    for (const Vgpu& other : function.vgpus) {
      if (other.id == vgpu.id) idPlace.failWith("the id is taken by another vGPU of the GPU");
      if (other.uuid == vgpu.uuid) entry.require("uuid").failWith("the uuid is taken by another vGPU");
    }
    if (const auto pid = entry.find("vm_pid")) vgpu.vmPid = pid->whole(0, kMany);
    if (vgpu.vmPid != 0) pids.push_back(vgpu.vmPid);
    setGuest(entry, type, static_cast<uint64_t>(vgpu.id), cells);
    function.vgpus.push_back(vgpu);
  }
}

// The share that a guest has, as its line tells it. The board number is that of the type.
void readGuestType(const JsonCursor& gpu, PciFunction& function) {
  const auto share = gpu.find("guest_type");
  if (!share) return;
  const uint64_t id = share->require("id").whole(1, 65535);
  function.guestInfo = "type_id=" + std::to_string(id) + ",name=" + share->require("name").text() +
                       ",framebuffer=" + std::to_string(share->require("framebuffer").whole(0, kMany));
  if (const auto line = share->find("line")) function.guestInfo = line->text();
  const auto subsystem = gpu.find("subsystem");
  if (!subsystem || !subsystem->find("device")) function.subsystemDeviceId = static_cast<uint16_t>(id);
}

}  // namespace

void checkMediatedKeys(const JsonCursor& gpu) {
  checkRows(gpu, "vgpu_types",
            {"id", "name", "device_api", "max_resolution", "max_encode_num", "max_decode_num", "framebuffer",
             "max_instances", "max_ov_virtual_display", "available", "description"});
  checkRows(gpu, "vgpus",
            {"uuid", "type", "id", "vm_pid", "utilization", "memory_total", "memory_used", "overcommit",
             "overcommit_memory"});
  if (const auto share = gpu.find("guest_type")) share->allowKeys({"id", "name", "framebuffer", "line"});
}

void readMediated(const JsonCursor& gpu, PciFunction& function, CellMap& cells, std::vector<uint64_t>& pids) {
  if (const auto types = gpu.find("vgpu_types")) {
    function.vgpuTypes.emplace();
    for (const JsonCursor& entry : types->elements()) {
      const VgpuType type = readType(entry);
      for (const VgpuType& other : *function.vgpuTypes) {
        if (other.id == type.id) entry.require("id").failWith("the id is taken by another type");
      }
      function.vgpuTypes->push_back(type);
    }
  }
  if (const auto vgpus = gpu.find("vgpus")) readVgpus(*vgpus, function, cells, pids);
  readGuestType(gpu, function);
}
