#include "tree_writer.h"

#include <sys/stat.h>

#include "pci_tree.h"
#include "sim_model.h"

namespace {

constexpr long kNodeSize = 4096;
constexpr const char* kTree = "/tree";
constexpr const char* kParked = "/parked";
constexpr const char* kEvents = "/events";

std::string line(const std::string& text) {
  return text + "\n";
}

std::string nameOf(const Node& node) {
  char name[SIM_NODE_NAME];
  SimNode plain{};
  plain.kind = node.kind;
  plain.number = node.number;
  simNodeName(&plain, name);
  return name;
}

bool isGraphics(const Node& node) {
  return node.kind == SIM_NODE_CARD || node.kind == SIM_NODE_RENDER;
}

std::string nodePath(const Node& node) {
  return std::string(isGraphics(node) ? "/dev/dri/" : "/dev/") + nameOf(node);
}

// Where the driver tells of the node in the function's folder.
std::string nodeFolder(const Host& host, const Node& node) {
  const std::string function = functionFolder(host.functions[node.gpu].place);
  return function + (isGraphics(node) ? "/drm/" : "/misc/") + nameOf(node);
}

bool canChange(const Host& host, const Node& node) {
  for (const Face& face : host.faces) {
    if (face.gpu == node.gpu) return true;
  }
  return false;
}

std::string parentOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

}  // namespace

TreeWriter::TreeWriter(const std::string& folder)
    : tree(folder + kTree), parked(folder + kParked), events(folder + kEvents) {}

void TreeWriter::writeDriver(const Host& host) {
  const std::string parameters = "/sys/module/ovgpu/parameters/";
  tree.addFile(parameters + "ovgpu_driver_mode", line(host.driverMode));
  tree.addFile(parameters + "disable_vpu", host.vpu ? "0\n" : "1\n");
  tree.addFolder("/sys/bus/pci/drivers/ovgpu");
  tree.addFolder("/proc/driver/vela");
  if (host.vpu) tree.addFolder("/sys/bus/platform/drivers/ovgpu_vde");
  if (host.driverVersion)
    tree.addFile("/proc/driver/vela/version", "package version:" + line(*host.driverVersion));
  for (size_t i = 0; i < host.functions.size(); ++i) writeDriverOf(host.functions[i], i);
  for (const Node& node : host.nodes) {
    const std::string folder = nodeFolder(host, node);
    (node.present ? tree : parked).addFolder(folder);
    if (canChange(host, node)) (node.present ? parked : tree).addFolder(parentOf(folder));
  }
  writeMediated(tree, host);
}

void TreeWriter::writeDriverOf(const PciFunction& function, size_t index) {
  const std::string folder = functionFolder(function.place);
  tree.addLink("/sys/bus/pci/drivers/ovgpu/" + function.place.address, folder);
  tree.addLink(folder + "/driver", "/sys/bus/pci/drivers/ovgpu");
  if (function.isVirtualFunction) tree.addLink(folder + "/physfn", parentOf(folder));
  const std::string proc = "/proc/driver/vela/gpu" + std::to_string(index);
  tree.addFile(proc + "/devname", "ovgpu." + line(std::to_string(function.miscIds.front())));
  tree.addFile(proc + "/event_report", "");
}

void TreeWriter::writeNodes(const Host& host) {
  tree.addFolder("/dev");
  for (const Node& node : host.nodes) {
    const std::string path = nodePath(node);
    (node.present ? tree : parked).addNode(path, kNodeSize);
    if (canChange(host, node)) (node.present ? parked : tree).addFolder(parentOf(path));
  }
}

// What tells a plain machine from a container, and the processes.
void TreeWriter::writeGeneral(const Host& host) {
  tree.addFile("/proc/1/cgroup", "0::/init.scope\n");
  tree.addFile("/proc/mounts",
               "sysfs /sys sysfs rw,nosuid,nodev,noexec,relatime 0 0\n"
               "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0\n"
               "cgroup2 /sys/fs/cgroup cgroup2 rw,nosuid,nodev,noexec,relatime 0 0\n");
  tree.addFolder("/sys/fs/cgroup");
  for (const auto& [pid, cmdline] : host.processes) {
    tree.addFile("/proc/" + std::to_string(pid) + "/cmdline", cmdline);
  }
}

// Messages that wait for whoever opens the queue, and the records of the log daemon.
void TreeWriter::writeEvents(const Host& host) {
  for (size_t i = 0; i < host.functions.size(); ++i) {
    const std::string queue = "/gpu" + std::to_string(i);
    if (!host.functions[i].events.empty()) events.addFile(queue + "/waiting", host.functions[i].events);
    events.addFile(queue + "/uuid", host.functions[i].uuid);
  }
  for (const auto& [uuid, records] : host.faultRecords) {
    tree.addFile("/var/log/ovgpu/event_report/" + uuid + "/xid_records", records);
  }
}

void TreeWriter::applyExtras(const Host& host) {
  for (const auto& [path, content] : host.files) {
    if (content) {
      tree.replaceFile(path, *content);
    } else {
      tree.remove(path);
    }
  }
  for (const auto& [path, target] : host.links) tree.replaceLink(path, target);
}

void TreeWriter::write(const Host& host) {
  for (FileTree* const each : {&tree, &parked, &events}) {
    each->makeRoot();
  }
  for (const char* const folder : {"/sys/bus/pci/devices", "/sys/bus/pci/drivers", "/sys/class",
                                   "/sys/devices", "/sys/bus/platform/drivers", "/var/log", "/etc"}) {
    tree.addFolder(folder);
  }
  for (const PciFunction& function : host.functions) writeFunction(tree, host, function);
  for (const Adapter& adapter : host.adapters) writeAdapter(tree, host, adapter);
  if (host.loaded) writeDriver(host);
  writeNodes(host);
  writeGeneral(host);
  writeEvents(host);
  applyExtras(host);
}

HostPaths TreeWriter::pathsOf(const std::string& folder, const Host& host) {
  HostPaths paths;
  for (size_t i = 0; i < host.nodes.size(); ++i) {
    const Node& node = host.nodes[i];
    const std::string path = nodePath(node);
    struct stat status {};
    // A node that the host's "files" took away has no file and is found by nobody.
    const bool isThere = stat((folder + kTree + path).c_str(), &status) == 0 ||
                         stat((folder + kParked + path).c_str(), &status) == 0;
    paths.files.push_back(isThere ? NodeFile{status.st_dev, status.st_ino} : NodeFile{});
    if (!canChange(host, node)) continue;
    paths.nodePaths.push_back({i, path});
    paths.nodePaths.push_back({i, nodeFolder(host, node)});
  }
  for (const auto& [path, content] : host.files) {
    if (content) continue;
    paths.removed.push_back(path.ends_with('/') ? path.substr(0, path.size() - 1) : path);
  }
  for (const uint64_t pid : host.unknownPids) {
    paths.removed.push_back("/proc/" + std::to_string(pid) + "/cmdline");
  }
  return paths;
}
