#include "installation.h"

#include <cstdlib>
#include <string>

#include "host_error.h"

namespace fs = std::filesystem;

namespace {

fs::path firstOf(const fs::path& folder, std::initializer_list<const char*> places) {
  for (const char* const place : places) {
    fs::path path = folder / place;
    if (std::error_code error; fs::exists(path, error)) return fs::canonical(path);
  }
  throw HostError("a part of the simulator is missing: " + (folder / *places.begin()).string());
}

}  // namespace

Installation findInstallation() {
  const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
  Installation found;
  found.library = firstOf(folder, {"libovgpu_sim.so", "../lib/ovgpu-sim/libovgpu_sim.so"});
  found.launcher = firstOf(folder, {"ovgpu-sim-launch", "../lib/ovgpu-sim/ovgpu-sim-launch"});
  found.stubs = firstOf(folder, {"stubs", "../share/ovgpu-sim/stubs"});
  if (const char* const more = std::getenv("OVGPU_SIM_HOSTS")) {
    const std::string folders = more;
    for (size_t at = 0; at < folders.size();) {
      const size_t end = std::min(folders.find(':', at), folders.size());
      if (end > at) found.hosts.emplace_back(folders.substr(at, end - at));
      at = end + 1;
    }
  }
  found.hosts.push_back(firstOf(folder, {"hosts", "../share/ovgpu-sim/hosts"}));
  return found;
}
