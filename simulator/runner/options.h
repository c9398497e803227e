// The command line of ovgpu-sim.
#ifndef OPTIONS_H
#define OPTIONS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How the command is shown the host.
enum class Tier { kPreload, kSeccomp };

struct Options {
  std::optional<std::string> host;
  std::optional<std::string> stateFolder;
  std::optional<std::string> traceFile;
  std::optional<std::string> unexpectedFile;
  std::optional<std::string> user;
  std::vector<std::string> faults;
  Tier tier = Tier::kPreload;
  bool listHosts = false;
  bool help = false;
  std::vector<std::string> command;
};

/// Throws HostError with what is wrong.
Options parseOptions(const std::vector<std::string>& arguments);

std::string_view optionsHelp();

#endif
