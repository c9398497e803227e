#include "host_reader.h"

#include <algorithm>

#include "event_reader.h"
#include "gpu_reader.h"
#include "hints.h"
#include "json_cursor.h"
#include "sim_records.h"
#include "topology_reader.h"
#include "value_reader.h"

using nlohmann::json;

namespace {

constexpr uint32_t kFirstRenderInterface = 100000;

const std::vector<std::string_view> kHostKeys{
    "description",     "driver_loaded", "driver_mode",  "driver_version", "vpu",     "protocol",
    "render_protocol", "interfaces",    "time",         "gpu_defaults",   "gpus",    "processes",
    "packages",        "files",         "links",        "faults",         "sablink", "adapters",
    "bridges",         "xid_records",   "firmware_busy"};

// The paths that the preload library sends to the host.
constexpr std::string_view kHostPaths[] = {"/sys/", "/proc/", "/dev/", "/var/log/ovgpu/", "/etc/ovparams"};

uint64_t fnv1a(std::string_view text) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const char c : text) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 0x100000001b3;
  }
  return hash;
}

void readProtocol(const JsonCursor& top, Host& host) {
  const auto protocol = top.find("protocol");
  if (protocol) {
    if (protocol->value() == 0) {
      host.protocol = SIM_PROTOCOL_0;
    } else if (protocol->value() == "none") {
      host.protocol = SIM_PROTOCOL_NONE;
    } else if (protocol->value().is_object()) {
      protocol->allowKeys({"major", "minor"});
      host.currentMajor = static_cast<uint16_t>(protocol->require("major").whole(0, 65535));
      host.currentMinor = static_cast<uint16_t>(protocol->require("minor").whole(0, 65535));
    } else if (protocol->value() != 1) {
      protocol->fail("1, 0, \"none\", or {\"major\": N, \"minor\": N} for what the probe answers");
    }
  }
  const auto render = top.find("render_protocol");
  if (!render) {
    host.renderProtocol = host.protocol == SIM_PROTOCOL_NONE ? SIM_PROTOCOL_NONE : SIM_PROTOCOL_0;
  } else if (render->value() == "none") {
    host.renderProtocol = SIM_PROTOCOL_NONE;
  } else if (render->value() != 0) {
    render->fail("0 or \"none\"");
  }
}

// How many attempts of each command find the firmware busy.
void readFirmware(const JsonCursor& top, Host& host) {
  const auto busy = top.find("firmware_busy");
  if (!busy) return;
  const bool isFull = busy->value().is_object();
  if (isFull) busy->allowKeys({"attempts", "again"});
  const JsonCursor attempts = isFull ? busy->require("attempts") : *busy;
  host.busyAttempts = static_cast<uint32_t>(attempts.whole(0, 0xFFFFFFFF));
  const auto again = isFull ? busy->find("again") : std::nullopt;
  if (again) host.busyAgain = again->flag();
}

void addListed(Host& host, const ListedInterface& listed) {
  auto& list = listed.name >= kFirstRenderInterface ? host.renderListed : host.listed;
  list.push_back(listed);
}

// The highest version of everything that the model serves.
std::vector<ListedInterface> servedInterfaces(const Host& host) {
  std::map<uint32_t, uint16_t> highest;
  const auto addOne = [&](const SimRecord& record) {
    if (record.interfaceName == 0) return;
    uint16_t& version = highest[record.interfaceName];
    version = std::max(version, record.version);
    for (const uint16_t* name = record.further; name && *name; ++name) highest.try_emplace(*name, 0);
  };
  const auto add = [&](const SimRecord* records, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) addOne(records[i]);
  };
  uint32_t count = 0;
  if (host.protocol == SIM_PROTOCOL_1) {
    const SimRecord* const records = simRecords1(&count);
    add(records, count);
  } else {
    const SimRecord* const records = simRecords0(&count);
    add(records, count);
    for (uint32_t i = 0; const SimRecord* const record = simSmcRecord(i); ++i) addOne(*record);
  }
  const SimRecord* const vpu = simVpuRecords(&count);
  add(vpu, count);
  std::vector<ListedInterface> served;
  for (const auto& [name, version] : highest) served.push_back({name, version, version});
  return served;
}

ListedInterface readRange(uint32_t name, const JsonCursor& place) {
  if (place.value().is_number()) {
    const auto version = static_cast<uint16_t>(place.whole(0, 255));
    return {name, version, version};
  }
  const auto ends = place.elements();
  if (ends.size() != 2) place.fail("a version, or [lowest, highest]");
  return {name, static_cast<uint16_t>(ends[0].whole(0, 255)), static_cast<uint16_t>(ends[1].whole(0, 255))};
}

void readInterfaces(const JsonCursor& top, Host& host) {
  const auto place = top.find("interfaces");
  if (place && place->value().is_array()) {
    for (const JsonCursor& entry : place->elements()) {
      entry.allowKeys({"name", "min", "max"});
      addListed(host, {static_cast<uint32_t>(entry.require("name").whole(0, 0xFFFFFFFF)),
                       static_cast<uint16_t>(entry.require("min").whole(0, 255)),
                       static_cast<uint16_t>(entry.require("max").whole(0, 255))});
    }
    return;
  }
  std::map<uint32_t, ListedInterface> listed;
  for (const ListedInterface& served : servedInterfaces(host)) listed[served.name] = served;
  if (place) {
    for (const auto& [text, range] : place->members()) {
      const auto name = numberFromText(text);
      if (!name || *name > 0xFFFFFFFF) range.failWith("an interface is named by its number");
      if (range.value().is_null()) {
        listed.erase(static_cast<uint32_t>(*name));
      } else {
        listed[static_cast<uint32_t>(*name)] = readRange(static_cast<uint32_t>(*name), range);
      }
    }
  }
  for (const auto& [name, range] : listed) addListed(host, range);
}

void readDriver(const JsonCursor& top, Host& host) {
  if (const auto loaded = top.find("driver_loaded")) host.loaded = loaded->flag();
  if (const auto vpu = top.find("vpu")) host.vpu = vpu->flag();
  if (const auto mode = top.find("driver_mode")) {
    if (mode->value().is_number_integer()) {
      host.driverMode = std::to_string(mode->value().get<int64_t>());
    } else if (mode->value().is_string()) {
      host.driverMode = mode->text();
    } else {
      mode->fail("-1, 0, 1, or the text of the parameter file");
    }
  }
  if (const auto version = top.find("driver_version")) {
    if (version->value().is_null()) {
      host.driverVersion.reset();
    } else {
      host.driverVersion = version->text();
    }
  }
}

std::string checkPath(const std::string& path, const JsonCursor& place) {
  for (const std::string_view start : kHostPaths) {
    if (path.starts_with(start) && path.find("/../") == std::string::npos) return path;
  }
  place.failWith(
      "not a path that a host has; those are below /sys, /proc, /dev and /var/log/ovgpu, and "
      "/etc/ovparams");
}

std::string bytesOf(const JsonCursor& place) {
  if (place.value().is_string()) return place.text();
  if (!place.value().is_object()) place.fail("text, null, or {\"hex\": \"...\"}");
  place.allowKeys({"hex"});
  return bytesFromHex(place.require("hex"));
}

void readFiles(const JsonCursor& top, Host& host) {
  if (const auto files = top.find("files")) {
    for (const auto& [path, content] : files->members()) {
      auto& file = host.files[checkPath(path, content)];
      if (!content.value().is_null()) file = bytesOf(content);
    }
  }
  if (const auto links = top.find("links")) {
    for (const auto& [path, target] : links->members()) host.links[checkPath(path, target)] = target.text();
  }
}

void readProcesses(const JsonCursor& top, Host& host) {
  const auto processes = top.find("processes");
  if (!processes) return;
  for (const auto& [text, process] : processes->members()) {
    const auto pid = numberFromText(text);
    if (!pid) process.failWith("a process is named by its id");
    process.allowKeys({"cmdline"});
    std::string& cmdline = host.processes[*pid];
    for (const JsonCursor& argument : process.require("cmdline").elements()) {
      cmdline += argument.text() + '\0';
    }
  }
  std::erase_if(host.unknownPids, [&](uint64_t pid) { return host.processes.contains(pid); });
}

std::string fullAnswer(const std::string& tool, const std::string& package, const std::string& version) {
  if (tool == "dpkg") {
    return "Package: " + package + "\nStatus: install ok installed\nPriority: optional\nSection: kernel\n" +
           "Architecture: amd64\nVersion: " + version + "\nDescription: GPU driver\n";
  }
  return "Name        : " + package + "\nVersion     : " + version +
         "\nRelease     : 1\nArchitecture: x86_64\nSummary     : GPU driver\n";
}

void readPackages(const JsonCursor& top, Host& host) {
  const auto packages = top.find("packages");
  if (!packages) return;
  packages->allowKeys({"dpkg", "rpm"});
  for (const auto& [tool, answers] : packages->members()) {
    for (const auto& [package, answer] : answers.members()) {
      PackageAnswer& told = host.packages[tool][package];
      if (answer.value().is_string()) {
        told.text = fullAnswer(tool, package, answer.text());
        continue;
      }
      if (!answer.value().is_object()) answer.fail("a version, or {\"text\": \"...\", \"status\": N}");
      answer.allowKeys({"text", "status"});
      told.text = answer.require("text").text();
      if (const auto status = answer.find("status")) told.status = static_cast<int>(status->whole(0, 255));
    }
  }
}

void readGpus(const JsonCursor& top, Host& host) {
  const auto gpus = top.find("gpus");
  if (!gpus) return;
  const auto defaults = top.find("gpu_defaults");
  if (defaults) checkGpuKeys(*defaults);
  GpuReader reader(host);
  for (const JsonCursor& gpu : gpus->elements()) {
    checkGpuKeys(gpu);
    const auto repeat = gpu.find("repeat");
    const uint64_t copies = repeat ? repeat->whole(0, 1024) : 1;
    for (uint64_t copy = 0; copy < copies; ++copy) {
      reader.read(gpu, defaults ? defaults->value() : json::object(), copy);
    }
  }
  reader.finish();
}

}  // namespace

Host readHost(const HostDocument& document) {
  const JsonCursor top(document.json, document.file);
  top.allowKeys(kHostKeys);
  Host host;
  host.name = document.file;
  host.hash = fnv1a(document.json.dump());
  readDriver(top, host);
  readProtocol(top, host);
  readInterfaces(top, host);
  readFirmware(top, host);
  if (const auto time = top.find("time")) host.time = time->moment();
  readGpus(top, host);
  readSablink(top, host);
  readAdapters(top, host);
  readBridges(top, host);
  readOldRecords(top, host);
  readFiles(top, host);
  readProcesses(top, host);
  readPackages(top, host);
  if (const auto faults = top.find("faults")) {
    for (const JsonCursor& fault : faults->elements()) host.faults.push_back(fault.text());
  }
  return host;
}
