// Where the parts of the simulator lie: beside the executable in a build tree, or installed.
#ifndef INSTALLATION_H
#define INSTALLATION_H

#include <filesystem>
#include <vector>

struct Installation {
  std::filesystem::path library;   // libovgpu_sim.so
  std::filesystem::path launcher;  // ovgpu-sim-launch
  std::filesystem::path stubs;     // folder of dpkg and rpm
  std::vector<std::filesystem::path> hosts;
};

/// Throws HostError when a part is missing. The environment's OVGPU_SIM_HOSTS, folders with ":" between
/// them, comes before the hosts that belong to the simulator.
Installation findInstallation();

#endif
