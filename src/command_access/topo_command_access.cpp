#include "command_access/topo_command_access.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/topo_output.h"
#include "common_define.h"
#include "rusk/text.h"

namespace tolk {

namespace {

/// What a cell or the head of a column may say, and what it means.
struct LegendLine {
  const char* key;
  const char* text;
};

constexpr LegendLine kTopoLegend[] = {
    {"X", "Self"},
    {"SYS",
     "Topology path that contains PCIe switches/bridges as well as multiple host bridges across NUMA nodes."},
    {"NODE",
     "Topology path that contains PCIe switches/bridges as well as multiple host bridges within a NUMA "
     "node."},
    {"HPB", "Topology path that contains PCIe switches/bridges as well as a single host bridge."},
    {"MPB", "Topology path that contains multiple PCIe switches/bridges (but no host bridge)."},
    {"SPB", "Topology path that contains at most one PCIe switch/bridge."},
    {"INT", "Topology path that is created internally, for example 2 devices on a single B220 card."},
    {"OVx", "Topology path that is a bonded set of x SABLINKs."},
};

constexpr LegendLine kP2pLegend[] = {
    {"X", "Self"},    {"OK", "Status Ok"}, {"CNS", "Chipset not supported"}, {"GNS", "Gpu not supported"},
    {"U", "Unknown"},
};

constexpr const char* kSelf = "X";

/// By LUMO_TOPOLOGY_....
constexpr const char* kLevelWords[] = {"internal connection", "a single PCIe switch", "multiple PCIe bridges",
                                       "a PCIe Host Bridge",  "a NUMA node",          "system"};

/// The values of "-p2p"; the place is the mode.
constexpr const char* kP2pModes[] = {"r", "w"};

constexpr const char* kFalseCombination = "Error: command option is false combination";
constexpr const char* kCombinationError = "Error: command option combination error";

template <std::size_t size>
nlohmann::ordered_json toLegend(const LegendLine (&lines)[size]) {
  auto legend = nlohmann::ordered_json::object();
  for (const auto& line : lines) legend[line.key] = line.text;
  return legend;
}

std::string gpuName(std::uint32_t index) {
  return "GPU" + std::to_string(index);
}

std::shared_ptr<Step> notAvailable() {
  return commandError("Error: the requested operation is not available", ExitCode::kUnsupported);
}

std::shared_ptr<Step> invalidIndex() {
  return commandError("Error: index is invalid", ExitCode::kBadArgument);
}

}  // namespace

/// A way to use the command: the option that chooses it, how many options there must be with it, counting
/// the command's own word, and what it says to any other number.
struct TopoCommandAccess::Form {
  const char* option;
  std::size_t optionCount;
  bool needsIndex;
  const char* misuse;
  std::shared_ptr<Step> (TopoCommandAccess::*show)();
};

/// A row and a column of a matrix.
struct TopoCommandAccess::Node {
  std::string sbdf;
  std::string name;
  const LumoAccessDevice* gpu;  ///< null for an adapter
};

constexpr TopoCommandAccess::Form TopoCommandAccess::kForms[] = {
    {"-m", 2, false, kFalseCombination, &TopoCommandAccess::showMatrix<true>},
    {"-mg", 2, false, kFalseCombination, &TopoCommandAccess::showMatrix<false>},
    {"-p2p", 2, false, kFalseCombination, &TopoCommandAccess::showP2pMatrix},
    {"-n", 3, true, kFalseCombination, &TopoCommandAccess::showNearestGpus},
    {"-p", 3, true, kCombinationError, &TopoCommandAccess::showGpuPath},
};

std::shared_ptr<Step> TopoCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (auto failure = countDevices({}, count_)) return failure;
  if (auto failure = recordGpus()) return failure;

  const auto* const form =
      std::ranges::find_if(kForms, [this](const Form& one) { return hasOption(one.option); });
  if (form == std::end(kForms)) {
    return commandError("Error: not support this command", ExitCode::kUnsupported);
  }
  const std::size_t optionCount = options.size() - options.count("--debug");
  if (optionCount != form->optionCount || (form->needsIndex && !hasOption("-i"))) {
    return commandError(form->misuse, ExitCode::kUnsupported);
  }
  return (this->*form->show)();
}

std::shared_ptr<Step> TopoCommandAccess::recordGpus() {
  gpus_.clear();
  for (std::uint32_t index = 0; index < count_; ++index) {
    auto device = accessFactory->getAccessDeviceById(index);
    if (!device) return noSuchDevice(index);
    DeviceType type{};
    if (device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS) return notAvailable();
    if (type == DeviceType::kPhysical || type == DeviceType::kMpcParent) {
      gpus_.push_back({index, std::move(device)});
    }
  }
  return nullptr;
}

template <bool withNics>
std::shared_ptr<Step> TopoCommandAccess::showMatrix() {
  Json document;
  if (queryTopo(document, withNics) != LUMO_RETURN_SUCCESS) return notAvailable();
  return std::make_shared<TopoOutput>(std::move(document));
}

std::shared_ptr<Step> TopoCommandAccess::showP2pMatrix() {
  const auto* const mode = std::ranges::find(kP2pModes, options.at("-p2p").front());
  if (mode == std::end(kP2pModes)) {
    return commandError("Error: wrong value type for a option", ExitCode::kBadArgument);
  }
  Json document;
  if (queryP2pStatus(document, static_cast<std::uint32_t>(mode - kP2pModes)) != LUMO_RETURN_SUCCESS) {
    return notAvailable();
  }
  return std::make_shared<TopoOutput>(std::move(document));
}

std::shared_ptr<Step> TopoCommandAccess::showNearestGpus() {
  const auto index = toIndex(rusk::split(options.at("-i").front(), ',').front());
  if (!index) return invalidIndex();
  const std::int64_t level = std::strtol(options.at("-n").front().c_str(), nullptr, 10);
  const auto highest = std::numeric_limits<std::uint32_t>::max();
  const auto asked = level > highest ? highest : static_cast<std::uint32_t>(level);
  return queryNearestGpus(*index, asked) == LUMO_RETURN_SUCCESS ? nullptr : notAvailable();
}

std::shared_ptr<Step> TopoCommandAccess::showGpuPath() {
  const auto ids = rusk::split(options.at("-i").front(), ',');
  if (ids.size() != 2) {
    return commandError("Error: please specify two device index.", ExitCode::kBadArgument);
  }
  const auto a = toIndex(ids[0]);
  const auto b = toIndex(ids[1]);
  if (!a || !b) return invalidIndex();
  return queryGpuPath(*a, *b) == LUMO_RETURN_SUCCESS ? nullptr : notAvailable();
}

std::optional<std::uint32_t> TopoCommandAccess::toIndex(const std::string& text) const {
  const auto number = static_cast<std::uint64_t>(std::strtol(text.c_str(), nullptr, 10));
  return number < count_ ? std::optional(static_cast<std::uint32_t>(number)) : std::nullopt;
}

LumoReturn TopoCommandAccess::queryTopo(Json& document, bool withNics) const {
  std::vector<Node> nodes;
  for (const auto& [index, device] : gpus_) {
    LumoPciInfo info{};
    if (const LumoReturn ret = device->devGetPciInfo(info); ret != LUMO_RETURN_SUCCESS) return ret;
    nodes.push_back({info.sbdf, gpuName(index), device.get()});
  }
  auto adapters = Json::object();
  if (withNics) {
    if (const LumoReturn ret = addAdapters(nodes, adapters); ret != LUMO_RETURN_SUCCESS) return ret;
  }

  // A row gets its cells in the order of the nodes: those left of the diagonal come from the rows above.
  std::vector<Json> rows(nodes.size(), Json::object());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    rows[i][nodes[i].name] = kSelf;
    for (std::size_t j = i + 1; j < nodes.size(); ++j) {
      std::string text;
      const LumoReturn ret = queryConnection(nodes[i], nodes[j], text);
      if (ret != LUMO_RETURN_SUCCESS) return ret;
      rows[i][nodes[j].name] = text;
      rows[j][nodes[i].name] = std::move(text);
    }
  }
  for (std::size_t i = 0; i < gpus_.size(); ++i) {
    std::string memory = kNoValue;
    std::string cpus = kNoValue;
    gpus_[i].device->getAffinityString(memory, cpus);
    rows[i]["CPU Affinity"] = std::move(cpus);
    rows[i]["NUMA Affinity"] = std::move(memory);
  }

  auto& topo = document["topo"] = Json::object();
  for (std::size_t i = 0; i < nodes.size(); ++i) topo[nodes[i].name] = std::move(rows[i]);
  document["Legend"] = toLegend(kTopoLegend);
  if (!adapters.empty()) document["NIC Legend"] = std::move(adapters);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn TopoCommandAccess::addAdapters(std::vector<Node>& nodes, Json& legend) const {
  std::vector<std::string> sbdfs;
  if (gpus_.empty() || gpus_.front().device->getNicDeviceSbdf(sbdfs) != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "get nic device pci sbdf failed";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  std::map<std::string, std::string> names;
  queryMellanoxName(sbdfs, names);
  for (const auto& [mellanoxName, sbdf] : names) {
    auto name = "NIC" + std::to_string(legend.size());
    legend[name] = mellanoxName;
    nodes.push_back({sbdf, std::move(name), nullptr});
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn TopoCommandAccess::queryConnection(const Node& a, const Node& b, std::string& text) const {
  if (a.gpu != nullptr && b.gpu != nullptr) {
    const LumoReturn ret = a.gpu->getDeviceSablinkLayout(*b.gpu, text);
    if (ret == LUMO_RETURN_SUCCESS && !text.empty()) return ret;
  }
  return gpus_.front().device->getTopologyLevel(a.sbdf, b.sbdf, text);
}

LumoReturn TopoCommandAccess::queryP2pStatus(Json& document, std::uint32_t mode) const {
  auto& topo = document["topo"] = Json::object();
  for (const auto& own : gpus_) {
    auto& row = topo[gpuName(own.index)];
    for (const auto& other : gpus_) {
      std::string text = kSelf;
      if (own.index != other.index) {
        const LumoReturn ret = own.device->getP2pStatus(*other.device, mode, text);
        if (ret != LUMO_RETURN_SUCCESS) return ret;
      }
      row[gpuName(other.index)] = std::move(text);
    }
  }
  document["Legend"] = toLegend(kP2pLegend);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn TopoCommandAccess::queryNearestGpus(std::uint32_t index, std::uint32_t level) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return LUMO_RETURN_UNKNOWN_ERROR;
  std::vector<std::shared_ptr<LumoAccessDevice>> nearest;
  LumoReturn ret = device->getNearestGpus(level, nearest);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  if (nearest.empty()) {
    std::cout << "No devices connected to device " << index << " by this way" << std::endl;
    return LUMO_RETURN_SUCCESS;
  }
  if (level >= std::size(kLevelWords)) return LUMO_RETURN_UNKNOWN_ERROR;

  std::map<std::string, std::uint32_t> indexByUuid;
  std::string uuid;
  for (const auto& gpu : gpus_) {
    ret = gpu.device->devGetUUID(uuid);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    indexByUuid.emplace(uuid, gpu.index);
  }
  std::string list;
  for (const auto& near : nearest) {
    ret = near->devGetUUID(uuid);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    const auto found = indexByUuid.find(uuid);
    if (found != indexByUuid.end()) list += std::to_string(found->second) + ',';
  }
  if (!list.empty()) list.pop_back();
  std::cout << "Device " << index << " is connected by way of " << kLevelWords[level]
            << " to device(s):" << list << std::endl;
  return LUMO_RETURN_SUCCESS;
}

LumoReturn TopoCommandAccess::queryGpuPath(std::uint32_t a, std::uint32_t b) const {
  const auto device = accessFactory->getAccessDeviceById(a);
  const auto peer = accessFactory->getAccessDeviceById(b);
  if (!device || !peer) return LUMO_RETURN_UNKNOWN_ERROR;
  std::string text;
  const LumoReturn ret = device->getTopologyLevel(*peer, text);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  std::cout << "Device " << a << " is connected to device " << b << " by way of " << text << std::endl;
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
