// Starts the command on a host and waits for it.
#ifndef COMMAND_RUNNER_H
#define COMMAND_RUNNER_H

#include <string>
#include <vector>

#include "host_folder.h"
#include "installation.h"

/// Refuses, with HostError, a command that the preload library cannot get into.
void checkCommand(const std::string& command);

/// The exit status to end with. `traceFile` is empty when nothing is traced.
int runCommand(const Installation& parts, const HostFolder& folder, const std::string& traceFile,
               const std::vector<std::string>& command);

#endif
