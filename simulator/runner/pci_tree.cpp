#include "pci_tree.h"

#include <algorithm>
#include <cstdio>

#include "config_space.h"

namespace {

std::string hex(uint32_t number, int digits) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%0*x\n", digits, number);
  return text;
}

std::string line(const std::string& text) {
  return text + "\n";
}
std::string line(int64_t number) {
  return std::to_string(number) + "\n";
}

// What every function and bridge of the bus has.
void writeNode(FileTree& tree, const std::string& folder, const PciPlace& place,
               const PciIdentity& identity) {
  tree.addFile(folder + "/vendor", hex(identity.vendorId, 4));
  tree.addFile(folder + "/device", hex(identity.deviceId, 4));
  tree.addFile(folder + "/class", hex(identity.classCode, 6));
  tree.addFile(folder + "/numa_node", line(place.numaNode));
  tree.addFile(folder + "/local_cpulist", line(place.cpus));
  tree.addFile(folder + "/local_cpus", line(cpuMask(place.cpus)));
  tree.addLink("/sys/bus/pci/devices/" + folder.substr(folder.rfind('/') + 1), folder);
}

// A bridge is where the first function below it is, unless the host says more of it.
void writeBridges(FileTree& tree, const Host& host, const PciPlace& place) {
  std::string folder = "/sys/devices";
  for (const std::string& name : place.upstream) {
    folder += "/" + name;
    if (name.starts_with("pci") || tree.hasFolder(folder)) continue;
    PciPlace own{.address = name, .upstream = {}, .numaNode = place.numaNode, .cpus = place.cpus};
    PciIdentity identity{.vendorId = 0x1022, .deviceId = 0x1483, .classCode = 0x060400};
    if (const auto told = host.bridges.find(name); told != host.bridges.end()) {
      const Bridge& bridge = told->second;
      identity.vendorId = bridge.vendorId.value_or(identity.vendorId);
      identity.deviceId = bridge.deviceId.value_or(identity.deviceId);
      identity.classCode = bridge.classCode.value_or(identity.classCode);
      own.numaNode = bridge.numaNode.value_or(own.numaNode);
      own.cpus = bridge.cpus.value_or(own.cpus);
    }
    writeNode(tree, folder, own, identity);
  }
}

std::string describe(const VgpuType& type) {
  if (type.description) return *type.description;
  return "max_resolution=" + type.maxResolution + ",max_encode_num=" + std::to_string(type.maxEncodeNum) +
         ",max_decode_num=" + std::to_string(type.maxDecodeNum) +
         ",framebuffer=" + std::to_string(type.framebuffer) +
         ",max_instances=" + std::to_string(type.maxInstances) +
         ",max_ov_virtual_display=" + std::to_string(type.maxVirtualDisplay);
}

void writeTypes(FileTree& tree, const std::string& folder, const PciFunction& function) {
  for (const VgpuType& type : *function.vgpuTypes) {
    const std::string place = folder + "/mdev_supported_types/ovgpu-" + std::to_string(type.id);
    uint64_t made = 0;
    tree.addFolder(place + "/devices");
    for (const Vgpu& vgpu : function.vgpus) {
      if (vgpu.type != type.id) continue;
      ++made;
      tree.addLink(place + "/devices/" + vgpu.uuid, folder + "/" + vgpu.uuid);
    }
    const uint64_t left = type.maxInstances > made ? type.maxInstances - made : 0;
    tree.addFile(place + "/name", line(type.name));
    tree.addFile(place + "/device_api", line(type.deviceApi));
    tree.addFile(place + "/available_instances", std::to_string(type.available.value_or(left)) + "\n");
    tree.addFile(place + "/description", line(describe(type)));
  }
  tree.addFolder(folder + "/mdev_supported_types");
  tree.addLink("/sys/class/mdev_bus/" + function.place.address, folder);
}

void writeVgpus(FileTree& tree, const std::string& folder, const PciFunction& function) {
  for (const Vgpu& vgpu : function.vgpus) {
    const std::string place = folder + "/" + vgpu.uuid;
    tree.addFile(place + "/ovgpu_vgpu/vgpu_id", line(vgpu.id));
    tree.addFile(place + "/ovgpu_vgpu/vm_pid", line(static_cast<int64_t>(vgpu.vmPid)));
    tree.addLink(place + "/mdev_type", folder + "/mdev_supported_types/ovgpu-" + std::to_string(vgpu.type));
    tree.addLink("/sys/bus/mdev/devices/" + vgpu.uuid, place);
  }
}

}  // namespace

std::string functionFolder(const PciPlace& place) {
  std::string path = "/sys/devices";
  for (const std::string& bridge : place.upstream) path += "/" + bridge;
  return path + "/" + place.address;
}

void writeFunction(FileTree& tree, const Host& host, const PciFunction& function) {
  writeBridges(tree, host, function.place);
  const std::string folder = functionFolder(function.place);
  const auto file = [&](const char* name, const std::string& content) {
    tree.addFile(folder + "/" + name, content);
  };
  writeNode(tree, folder, function.place, function.identity);
  file("subsystem_vendor", hex(function.subsystemVendorId, 4));
  file("subsystem_device", hex(function.subsystemDeviceId, 4));
  file("revision", hex(function.revision, 2));
  file("config", makeConfigSpace(function));
  file("resource", makeResourceFile(function));
  file("max_link_speed", line(linkSpeedText(function.highest.speed)));
  file("current_link_speed", line(linkSpeedText(function.current.speed)));
  file("max_link_width", line(function.highest.width));
  file("current_link_width", line(function.current.width));
}

void writeAdapter(FileTree& tree, const Host& host, const Adapter& adapter) {
  writeBridges(tree, host, adapter.place);
  const std::string folder = functionFolder(adapter.place);
  writeNode(tree, folder, adapter.place, adapter.identity);
  if (!adapter.name) return;
  const std::string device = folder + "/infiniband/" + *adapter.name;
  tree.addFile(device + "/node_type", "1: CA\n");
  tree.addLink("/sys/class/infiniband/" + *adapter.name, device);
}

void writeMediated(FileTree& tree, const Host& host) {
  const auto& functions = host.functions;
  const auto carries = [](const PciFunction& function) { return function.vgpuTypes.has_value(); };
  if (std::any_of(functions.begin(), functions.end(), carries)) {
    tree.addFolder("/sys/class/mdev_bus");
    tree.addFolder("/sys/bus/mdev/devices");
  }
  for (const PciFunction& function : functions) {
    const std::string folder = functionFolder(function.place);
    if (function.vgpuTypes) writeTypes(tree, folder, function);
    writeVgpus(tree, folder, function);
    if (function.guestInfo) tree.addFile(folder + "/ovgpu_vgpu/vgpu_device_info", line(*function.guestInfo));
  }
}

std::string cpuMask(const std::string& cpus) {
  std::vector<uint32_t> words(1, 0);
  size_t at = 0;
  while (at < cpus.size()) {
    const std::string part = cpus.substr(at, cpus.find(',', at) - at);
    at += part.size() + 1;
    unsigned first = 0;
    unsigned last = 0;
    const int fields = std::sscanf(part.c_str(), "%u-%u", &first, &last);
    if (fields < 1) continue;
    if (fields == 1) last = first;
    for (unsigned cpu = first; cpu <= std::min(last, 4095u); ++cpu) {
      if (words.size() <= cpu / 32) words.resize(cpu / 32 + 1, 0);
      words[cpu / 32] |= 1u << cpu % 32;
    }
  }
  std::string mask;
  for (size_t i = words.size(); i > 0; --i) {
    char text[16];
    std::snprintf(text, sizeof text, "%s%08x", mask.empty() ? "" : ",", words[i - 1]);
    mask += text;
  }
  return mask;
}
