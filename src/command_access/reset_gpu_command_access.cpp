#include "command_access/reset_gpu_command_access.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>

#include "command_error.h"
#include "common_define.h"
#include "driver_mode.h"

namespace tolk {

namespace {

LumoReturn gpuOnlyReset(LumoAccessDevice& device) {
  return device.gpuReset();
}

LumoReturn gpuWithHwrReset(LumoAccessDevice& device) {
  const LumoReturn ret = device.gpuReset();
  return ret != LUMO_RETURN_SUCCESS ? ret : device.gpuHwrCountsReset();
}

LumoReturn gpuWithDevReset(LumoAccessDevice& device) {
  const LumoReturn ret = device.deviceReset();
  return ret != LUMO_RETURN_SUCCESS ? ret : device.gpuHwrCountsReset();
}

struct ResetMode {
  std::string_view value;  ///< of "-r", as typed: "00" is none
  LumoReturn (*reset)(LumoAccessDevice& device);
};

constexpr ResetMode kModes[] = {
    {"0", gpuOnlyReset},
    {"1", gpuWithHwrReset},
    {"2", gpuWithDevReset},
};

std::shared_ptr<Step> resetFailed() {
  return commandError("Error: failed to reset with the given option", ExitCode::kOperationFailed);
}

}  // namespace

std::shared_ptr<Step> ResetGpuCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (readDriverMode() != DriverMode::kBareHost) {
    return commandError("Error: reset gpu is not supported by installed driver.", ExitCode::kUnsupported);
  }
  if (::geteuid() != 0) {
    return commandError("Error: unable to reset GPU insufficient permissions.", ExitCode::kNoPermission);
  }
  Targets targets;
  if (auto failure = getTargetDevices(targets)) return failure;
  return runReset(targets);
}

std::shared_ptr<Step> ResetGpuCommandAccess::runReset(const Targets& targets) const {
  const auto mode = std::ranges::find(kModes, options.at("-r").front(), &ResetMode::value);
  if (mode == std::end(kModes)) return illegalValue("-r");

  unsigned busy = 0;
  for (const auto& target : targets) {
    LumoPciInfo pci{};
    if (target.device->devGetPciInfo(pci) != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "get pci info failed";
      return resetFailed();
    }
    DeviceType type{};
    if (target.device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "get device type failed";
      return resetFailed();
    }
    if (type != DeviceType::kPhysical) {
      std::cout << "Error: gpu reset couldn't run because GPU " << pci.sbdf << " is not physical device."
                << std::endl;
      continue;
    }
    std::vector<LumoProcessMemUsage> processes;
    if (target.device->getProcessMemoryInfo(processes) != LUMO_RETURN_SUCCESS) return resetFailed();
    if (!processes.empty()) {
      std::cout << "gpu " << pci.sbdf << " is currently in use by another process." << std::endl;
      ++busy;
      continue;
    }
    if (mode->reset(*target.device) != LUMO_RETURN_SUCCESS) return resetFailed();
    std::cout << "reset GPU " << pci.sbdf << " success." << std::endl;
  }
  if (busy > 0) {
    std::cout << busy << " device is currently being used by one or more other process "
              << "(e.g.,VELA application,graphics application such as an X server or a\n"
              << "monitoring application such as another instance of orvane-tolk). "
              << "Please first kill processes using this device." << std::endl;
  }
  return nullptr;
}

}  // namespace tolk
