#include "device.h"
#include "device_object.h"

// Which processes use a device.

namespace lumo {

std::vector<LumoProcessMemUsage> Device::getProcessLevelMemoryInfo(LumoReturn* status) const {
  if (refuseMediated(status)) {
    return {};
  }
  std::vector<LumoProcessMemUsage> usages;
  for (const auto& [pid, usage] : consumeMv(deviceObj_->queryProcessMemory(), status)) {
    usages.push_back({.pid = pid,
                      .kind = usage.kind,
                      .gpuMemory = usage.gpuMemory,
                      .systemMemory = usage.systemMemory,
                      .reserved = 0});
  }
  return usages;
}

std::vector<LumoProcessGpuUtilization> Device::getProcessGpuUtilizations(LumoReturn* status) const {
  if (refuseMediated(status)) {
    return {};
  }
  constexpr unsigned long kEver = 0;
  std::vector<LumoProcessGpuUtilization> utilizations;
  for (const auto& [pid, share] : consumeMv(deviceObj_->queryProcessGpuUtil(kEver), status)) {
    utilizations.push_back({.pid = pid,
                            .kind = share.kind,
                            .timestamp = share.timestamp,
                            .gpu = share.gpu,
                            .memory = share.memory,
                            .encoder = share.encoder,
                            .decoder = share.decoder});
  }
  return utilizations;
}

}  // namespace lumo
