#include "command_access/power_limit_command_access.h"

#include <iostream>
#include <stdexcept>
#include <string>

#include "command_error.h"
#include "common_define.h"

namespace tolk {

namespace {

/// What "-o" asks for; the failure is a value that is neither of the two.
std::shared_ptr<Step> readPersistence(const ParsedOptions& options, bool& persistent) {
  const auto found = options.find("-o");
  const std::string value = found == options.end() ? "0" : found->second.front();
  persistent = value == "1";
  return persistent || value == "0"
             ? nullptr
             : commandError("Error: invalid power limit option value.", ExitCode::kBadArgument);
}

std::shared_ptr<Step> readLimit(const std::string& value, double& watts) try {
  watts = std::stod(value);
  return nullptr;
} catch (const std::out_of_range&) {
  return commandError("Error: invalid power limit value.", ExitCode::kBadArgument);
}

}  // namespace

std::shared_ptr<Step> PowerLimitCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (auto failure = refuseMdevBus()) return failure;
  const auto asked = options.find("-pl");
  if (asked == options.end()) return commandError("Error: missing -pl parameter", ExitCode::kBadArgument);
  Targets targets;
  if (auto failure = getTargetDevices(targets)) return failure;
  bool persistent = false;
  if (auto failure = readPersistence(options, persistent)) return failure;
  double limit = 0;
  if (auto failure = readLimit(asked->second.front(), limit)) return failure;
  return runSet(targets, limit, persistent);
}

std::shared_ptr<Step> PowerLimitCommandAccess::runSet(const Targets& targets, double limit, bool persistent) {
  for (const auto& [index, device] : targets) {
    DeviceType type{};
    if (device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "get device type failed";
      return commandError("Error: failed to reset with the given option", ExitCode::kOperationFailed);  // sic
    }
    if (type != DeviceType::kPhysical) {
      std::cout << "Error: set power limit couldn't run because device index = " << index
                << " is not physical device." << std::endl;
      continue;
    }
    double minimum = 0;
    double maximum = 0;
    if (device->getPowerLimitConstraints(minimum, maximum) != LUMO_RETURN_SUCCESS) {
      return commandError(
          "Error: unable to query power limit constraints, device may not support this feature",
          ExitCode::kUnsupported);
    }
    if (limit < minimum || limit > maximum) {
      return commandError(
          formatMessage("Error: invalid power limit value, min = %.3f, max = %.3f", minimum, maximum),
          ExitCode::kBadArgument);
    }
    if (device->setPowerLimit(limit, persistent) != LUMO_RETURN_SUCCESS) {
      return commandError("Error: failed to set power limit with the given option",
                          ExitCode::kOperationFailed);
    }
    std::cout << "set power limit to " << limit << "W successfully, device index = " << index
              << ", persistent option = " << (persistent ? "true" : "false") << std::endl;
  }
  return nullptr;
}

}  // namespace tolk
