#include "tree_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "config_space.h"
#include "host_error.h"

namespace fs = std::filesystem;

namespace {

constexpr off_t kNodeSize = 4096;

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

std::string nodePath(const Node& node) {
  char name[SIM_NODE_NAME];
  SimNode plain{};
  plain.kind = node.kind;
  plain.number = node.number;
  simNodeName(&plain, name);
  const bool isGraphics = node.kind == SIM_NODE_CARD || node.kind == SIM_NODE_RENDER;
  return std::string(isGraphics ? "/dev/dri/" : "/dev/") + name;
}

std::string functionFolder(const PciFunction& function) {
  std::string path = "/sys/devices";
  for (const std::string& bridge : function.upstream) path += "/" + bridge;
  return path + "/" + function.address;
}

[[noreturn]] void failOn(const std::string& path) {
  throw HostError("cannot write " + path + ": " + std::strerror(errno));
}

}  // namespace

TreeWriter::TreeWriter(std::string folder) : root(std::move(folder)) {}

void TreeWriter::addFolder(const std::string& path) {
  const auto place = std::lower_bound(made.begin(), made.end(), path);
  if (path.empty() || (place != made.end() && *place == path)) return;
  makeParents(path);
  if (mkdir(under(path).c_str(), 0755) != 0 && errno != EEXIST) failOn(under(path));
  made.insert(std::lower_bound(made.begin(), made.end(), path), path);
}

void TreeWriter::makeParents(const std::string& path) {
  addFolder(path.substr(0, path.rfind('/')));
}

void TreeWriter::addFile(const std::string& path, std::string_view content) {
  makeParents(path);
  const int fd = open(under(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) failOn(under(path));
  const ssize_t written = ::write(fd, content.data(), content.size());
  close(fd);
  if (written != static_cast<ssize_t>(content.size())) failOn(under(path));
}

// Links stay inside the tree because they are relative.
void TreeWriter::addLink(const std::string& path, const std::string& target) {
  makeParents(path);
  const std::string to = target.starts_with('/')
                             ? fs::path(target).lexically_relative(fs::path(path).parent_path()).string()
                             : target;
  if (symlink(to.c_str(), under(path).c_str()) != 0) failOn(under(path));
}

void TreeWriter::addQueue(const std::string& path) {
  makeParents(path);
  if (mkfifo(under(path).c_str(), 0644) != 0) failOn(under(path));
}

void TreeWriter::writeDriver(const Host& host) {
  const std::string parameters = "/sys/module/ovgpu/parameters/";
  addFile(parameters + "ovgpu_driver_mode", line(host.driverMode));
  addFile(parameters + "disable_vpu", host.vpu ? "0\n" : "1\n");
  addFolder("/sys/bus/pci/drivers/ovgpu");
  addFolder("/proc/driver/vela");
  if (host.vpu) addFolder("/sys/bus/platform/drivers/ovgpu_vde");
  if (host.driverVersion)
    addFile("/proc/driver/vela/version", "package version:" + line(*host.driverVersion));
}

void TreeWriter::writeFunction(const Host& host, const PciFunction& function, size_t index) {
  std::string bridge = "/sys/devices";
  for (const std::string& name : function.upstream) {
    bridge += "/" + name;
    if (name.starts_with("pci") || std::binary_search(made.begin(), made.end(), bridge)) continue;
    addFile(bridge + "/vendor", "0x1022\n");
    addFile(bridge + "/device", "0x1483\n");
    addFile(bridge + "/class", "0x060400\n");
    addFile(bridge + "/numa_node", line(function.numaNode));
    addLink("/sys/bus/pci/devices/" + name, bridge);
  }
  const std::string folder = functionFolder(function);
  const auto file = [&](const char* name, const std::string& content) {
    addFile(folder + "/" + name, content);
  };
  file("vendor", hex(function.vendorId, 4));
  file("device", hex(function.deviceId, 4));
  file("subsystem_vendor", hex(function.subsystemVendorId, 4));
  file("subsystem_device", hex(function.subsystemDeviceId, 4));
  file("class", hex(function.classCode, 6));
  file("revision", hex(function.revision, 2));
  file("config", makeConfigSpace(function));
  file("resource", makeResourceFile(function));
  file("max_link_speed", line(linkSpeedText(function.highest.speed)));
  file("current_link_speed", line(linkSpeedText(function.current.speed)));
  file("max_link_width", line(function.highest.width));
  file("current_link_width", line(function.current.width));
  file("numa_node", line(function.numaNode));
  file("local_cpulist", line(function.cpus));
  file("local_cpus", line(cpuMask(function.cpus)));
  addLink("/sys/bus/pci/devices/" + function.address, folder);
  if (!host.loaded) return;

  addLink("/sys/bus/pci/drivers/ovgpu/" + function.address, folder);
  addLink(folder + "/driver", "/sys/bus/pci/drivers/ovgpu");
  for (const uint32_t id : function.miscIds) addFolder(folder + "/misc/ovgpu." + std::to_string(id));
  for (const uint32_t id : function.cardIds) addFolder(folder + "/drm/card" + std::to_string(id));
  for (const uint32_t id : function.renderIds) addFolder(folder + "/drm/renderD" + std::to_string(id));
  if (function.isVirtualFunction) addLink(folder + "/physfn", folder.substr(0, folder.rfind('/')));
  const std::string proc = "/proc/driver/vela/gpu" + std::to_string(index);
  addFile(proc + "/devname", "ovgpu." + line(function.miscIds.front()));
  addQueue(proc + "/event_report");
}

void TreeWriter::writeNodes(const Host& host) {
  addFolder("/dev");
  for (const Node& node : host.nodes) {
    const std::string path = nodePath(node);
    addFile(path, "");
    if (truncate(under(path).c_str(), kNodeSize) != 0) failOn(under(path));
  }
}

// What tells a plain machine from a container, and the processes.
void TreeWriter::writeGeneral(const Host& host) {
  addFile("/proc/1/cgroup", "0::/init.scope\n");
  addFile("/proc/mounts",
          "sysfs /sys sysfs rw,nosuid,nodev,noexec,relatime 0 0\n"
          "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0\n"
          "cgroup2 /sys/fs/cgroup cgroup2 rw,nosuid,nodev,noexec,relatime 0 0\n");
  addFolder("/sys/fs/cgroup");
  for (const auto& [pid, cmdline] : host.processes) {
    addFile("/proc/" + std::to_string(pid) + "/cmdline", cmdline);
  }
}

void TreeWriter::applyExtras(const Host& host) {
  for (const auto& [path, content] : host.files) {
    std::error_code ignored;
    if (!content) {
      fs::remove_all(under(path), ignored);
    } else if (path.ends_with('/')) {
      fs::create_directories(under(path), ignored);
    } else {
      // By way of the links, so that a function's folder can be named as the program names it.
      fs::create_directories(fs::path(under(path)).parent_path(), ignored);
      made.push_back(path.substr(0, path.rfind('/')));
      std::sort(made.begin(), made.end());
      addFile(path, *content);
    }
  }
  for (const auto& [path, target] : host.links) {
    std::error_code ignored;
    fs::remove_all(under(path), ignored);
    addLink(path, target);
  }
}

void TreeWriter::write(const Host& host) {
  for (const char* const folder : {"/sys/bus/pci/devices", "/sys/bus/pci/drivers", "/sys/class",
                                   "/sys/devices", "/sys/bus/platform/drivers", "/var/log", "/etc"}) {
    addFolder(folder);
  }
  if (host.loaded) writeDriver(host);
  for (size_t i = 0; i < host.functions.size(); ++i) writeFunction(host, host.functions[i], i);
  writeNodes(host);
  writeGeneral(host);
  applyExtras(host);
}

std::vector<std::string> TreeWriter::removedPaths(const Host& host) {
  std::vector<std::string> removed;
  for (const auto& [path, content] : host.files) {
    if (!content) removed.push_back(path.ends_with('/') ? path.substr(0, path.size() - 1) : path);
  }
  for (const uint64_t pid : host.unknownPids) removed.push_back("/proc/" + std::to_string(pid) + "/cmdline");
  return removed;
}

std::vector<NodeFile> TreeWriter::nodeFiles(const std::string& root, const Host& host) {
  std::vector<NodeFile> files;
  for (const Node& node : host.nodes) {
    struct stat status {};
    // A node that the host's "files" took away has no file and is found by nobody.
    if (stat((root + nodePath(node)).c_str(), &status) == 0) {
      files.push_back({status.st_dev, status.st_ino});
    } else {
      files.push_back({});
    }
  }
  return files;
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
