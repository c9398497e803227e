// Starts the command on a host and waits for it.
#ifndef COMMAND_RUNNER_H
#define COMMAND_RUNNER_H

#include <string>
#include <vector>

#include "host_folder.h"
#include "installation.h"
#include "options.h"

/// Refuses, with HostError, a command that the preload library cannot get into.
void checkCommand(const std::string& command);

/// What whoever shows the host is told; empty where it is to do nothing.
struct CommandSetting {
  Tier tier = Tier::kPreload;
  std::string traceFile;
  std::string user;
};

/// The exit status to end with. Throws TierError when the kernel does not let the tier work.
int runCommand(const Installation& parts, const HostFolder& folder, const CommandSetting& setting,
               const std::vector<std::string>& command);

#endif
