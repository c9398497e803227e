// ovgpu-sim: runs a command on a simulated host.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "command_runner.h"
#include "fault_spec.h"
#include "host_document.h"
#include "host_error.h"
#include "host_folder.h"
#include "host_reader.h"
#include "installation.h"
#include "options.h"
#include "unexpected_calls.h"

namespace {

constexpr int kOwnError = 2;
// The number by which test suites are told that something cannot be tried here.
constexpr int kNoSuchTier = 77;
constexpr const char* kDefaultHost = "bare";

int listHosts(const HostLibrary& library) {
  const std::vector<std::string> names = library.names();
  size_t width = 0;
  for (const std::string& name : names) width = std::max(width, name.size());
  for (const std::string& name : names) {
    const nlohmann::json host = library.load(name).json;
    std::cout << name << std::string(width + 2 - name.size(), ' ') << host.value("description", "") << "\n";
  }
  return 0;
}

std::vector<FaultSpec> parseFaults(const Host& host, const std::vector<std::string>& given) {
  std::vector<FaultSpec> faults;
  for (const std::string& written : host.faults) faults.push_back(parseFault(written));
  for (const std::string& written : given) faults.push_back(parseFault(written));
  return faults;
}

int run(const Options& options) {
  if (options.help) {
    std::cout << optionsHelp() << faultHelp();
    return 0;
  }
  const Installation parts = findInstallation();
  const HostLibrary library(parts.hosts);
  if (options.listHosts) return listHosts(library);
  if (options.tier == Tier::kPreload) checkCommand(options.command.front());
  const Host host = readHost(library.load(options.host.value_or(kDefaultHost)));
  const std::vector<FaultSpec> faults = parseFaults(host, options.faults);
  HostFolder folder(options.stateFolder.value_or(""));
  folder.prepare(host, faults);
  const CommandSetting setting{
      .tier = options.tier,
      .traceFile = options.traceFile ? std::filesystem::absolute(*options.traceFile).string() : "",
      .user = options.user.value_or("")};
  if (!options.unexpectedFile) return runCommand(parts, folder, setting, options.command);
  // Opened before the command runs: one that cannot be told of is not run.
  std::ofstream unexpected(*options.unexpectedFile, std::ios::binary | std::ios::trunc);
  if (!unexpected) throw HostError("cannot write " + *options.unexpectedFile);
  const int status = runCommand(parts, folder, setting, options.command);
  unexpected << unexpectedCalls(folder.image());
  return status;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return run(parseOptions({arguments + 1, arguments + count}));
  } catch (const TierError& error) {
    std::cerr << "ovgpu-sim: the tier \"seccomp\" cannot be used here: " << error.what() << "\n";
    return kNoSuchTier;
  } catch (const HostError& error) {
    std::cerr << "ovgpu-sim: " << error.what() << "\n";
  } catch (const std::exception& error) {
    std::cerr << "ovgpu-sim: " << error.what() << "\n";
  }
  return kOwnError;
}
