#include "command_access/device_change_command_access.h"

#include <cstdlib>
#include <numeric>

#include "command_error.h"
#include "common_define.h"
#include "host_environment.h"
#include "rusk/text.h"

namespace tolk {

std::shared_ptr<Step> DeviceChangeCommandAccess::refuseMdevBus() {
  if (!hostHasMdevBus()) return nullptr;
  return commandError("Error: the requested operation is not supported by installed driver.",
                      ExitCode::kUnsupported);
}

std::shared_ptr<Step> DeviceChangeCommandAccess::countTargets(std::uint32_t& count) const {
  const StartWording wording{.noDevice = {"Error: no OV GPU device found.", ExitCode::kNoDevice}};
  return countDevices(wording, count);
}

std::shared_ptr<Step> DeviceChangeCommandAccess::getTargetDevices(Targets& targets) const {
  std::uint32_t count = 0;
  if (auto failure = countTargets(count)) return failure;

  std::vector<std::int64_t> asked(count);
  std::iota(asked.begin(), asked.end(), 0);
  if (const auto ids = options.find("-i"); ids != options.end()) {
    asked.clear();
    for (const auto& value : ids->second) {
      for (const auto& id : rusk::split(value, ',')) asked.push_back(std::strtol(id.c_str(), nullptr, 10));
    }
  }
  for (const auto index : asked) {
    auto device = deviceAt(index);
    if (!device) {
      TOLK_LOG(kError) << "get device " << index << " failed.";
      return commandError("Error: failed to find the specified GPU device.", ExitCode::kBadArgument);
    }
    targets.push_back({.index = static_cast<std::uint32_t>(index), .device = std::move(device)});
  }
  return nullptr;
}

std::shared_ptr<Step> DeviceChangeCommandAccess::illegalValue(const char* option) {
  return commandError(formatMessage(kIllegalValue, option), ExitCode::kUnsupported);
}

}  // namespace tolk
