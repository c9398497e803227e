#include "command_access/ecc_config_command_access.h"

#include <cstdlib>
#include <iostream>

#include "command_error.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> EccConfigCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (auto failure = refuseMdevBus()) return failure;
  Targets targets;
  if (auto failure = selectTargets(targets)) return failure;

  const long mode = std::strtol(options.at("-e").front().c_str(), nullptr, 10);
  if (mode != 0 && mode != 1) return illegalValue("-e");
  const auto configure = mode == 0 ? disableEccModeForTargetDevice : enableEccModeForTargetDevice;
  for (const auto& target : targets) configure(*target.device);
  return nullptr;
}

std::shared_ptr<Step> EccConfigCommandAccess::selectTargets(Targets& targets) const {
  std::uint32_t count = 0;
  if (auto failure = countTargets(count)) return failure;

  if (hasOption("-i")) {
    const std::int64_t asked = std::strtol(options.at("-i").front().c_str(), nullptr, 10);
    auto device = deviceAt(asked);
    if (!device) {
      TOLK_LOG(kError) << "failed to get device by id! expect id[" << asked << "]";
      return noSuchDevice(asked);
    }
    targets.push_back({.index = static_cast<std::uint32_t>(asked), .device = std::move(device)});
    return nullptr;
  }
  for (std::uint32_t index = 0; index < count; ++index) {
    auto device = deviceAt(index);
    if (!device) return commandError(kNotAvailable, ExitCode::kUnsupported);
    targets.push_back({.index = index, .device = std::move(device)});
  }
  return nullptr;
}

void EccConfigCommandAccess::enableEccModeForTargetDevice(LumoAccessDevice& device) {
  setEccMode(device, &LumoAccessDevice::memoryEnableEccMode, "Enable");
}

void EccConfigCommandAccess::disableEccModeForTargetDevice(LumoAccessDevice& device) {
  setEccMode(device, &LumoAccessDevice::memoryDisableEccMode, "Disable");
}

void EccConfigCommandAccess::setEccMode(LumoAccessDevice& device, SetMode setMode, const char* verb) {
  LumoPciInfo pci{};
  if (const LumoReturn ret = device.devGetPciInfo(pci); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get device pci info! error code[" << ret << "]";
    return;
  }
  const bool done = (device.*setMode)() == LUMO_RETURN_SUCCESS;
  std::cout << verb << " Inline ECC mode for " << pci.sbdf << (done ? " Successfully" : " Unsuccessfully")
            << std::endl;
}

}  // namespace tolk
