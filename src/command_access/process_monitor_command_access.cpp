#include "command_access/process_monitor_command_access.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/monitor_wording.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/process_monitor_output.h"
#include "common_define.h"
#include "host_environment.h"

namespace tolk {

namespace {

/// Percent of the GPU by process; nothing when the device does not tell. A process that is idle is not in
/// it.
using GpuShares = std::optional<std::unordered_map<std::uint32_t, std::uint32_t>>;

GpuShares gpuShares(const LumoAccessDevice& device) {
  std::vector<LumoProcessGpuUtilization> processes;
  if (device.getProcessGpuUtilization(processes) != LUMO_RETURN_SUCCESS) return std::nullopt;
  GpuShares shares(std::in_place);
  for (const auto& process : processes) shares->insert_or_assign(process.pid, process.gpu);
  return shares;
}

std::string shareText(const GpuShares& shares, std::uint32_t pid) {
  if (!shares) return kNoValue;
  const auto found = shares->find(pid);
  return std::to_string(found == shares->end() ? 0 : found->second) + "%";
}

}  // namespace

std::shared_ptr<Step> ProcessMonitorCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  if (hostHasMdevBus()) {
    return commandError("Error: process info is not supported by installed driver.", ExitCode::kUnsupported);
  }
  std::uint32_t count = 0;
  if (auto failure = countDevices(kMonitorWording, count)) return failure;

  nlohmann::ordered_json document{{"Process", nlohmann::ordered_json::object()}};
  for (std::uint32_t index = 0; index < count; ++index) {
    if (queryProcessInfo(index, document) != LUMO_RETURN_SUCCESS) {
      return commandError(kMonitorNotAvailable, ExitCode::kUnsupported);
    }
  }
  endLibrary();
  return std::make_shared<ProcessMonitorOutput>(std::move(document));
}

LumoReturn ProcessMonitorCommandAccess::queryProcessInfo(std::uint32_t index,
                                                         nlohmann::ordered_json& document) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return LUMO_RETURN_NOT_FOUND;

  DeviceType type{};
  if (const LumoReturn ret = device->devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) return ret;
  if (type == DeviceType::kMpcParent) return LUMO_RETURN_SUCCESS;
  unsigned long long totalBytes = 0;
  if (const LumoReturn ret = device->memoryGetTotal(totalBytes); ret != LUMO_RETURN_SUCCESS) return ret;
  std::vector<LumoProcessMemUsage> processes;
  if (const LumoReturn ret = device->getProcessMemoryInfo(processes); ret != LUMO_RETURN_SUCCESS) return ret;
  if (processes.empty()) return LUMO_RETURN_SUCCESS;

  const auto shares = gpuShares(*device);
  const auto deviceId = std::to_string(index);
  auto& rows = document["Process"][deviceId];
  for (const auto& process : processes) {
    const auto percent = totalBytes == 0 ? 0 : process.gpuMemory * 100 / totalBytes;
    const auto pid = std::to_string(process.pid);
    rows[pid] = {{"deviceId", deviceId},
                 {"pid", pid},
                 {"memory", std::to_string(percent) + "%"},
                 {"gpu", shareText(shares, process.pid)}};
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
