#include "command_access/tolk_command_access.h"

#include <optional>
#include <string>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/tolk_output.h"
#include "common_define.h"
#include "driver_mode.h"
#include "host_environment.h"

namespace tolk {

namespace {

/// The second pass is for a device that changed its performance state during the first.
constexpr int kPasses = 2;

std::string nameText(const LumoAccessDevice& device) {
  std::string name = kNoValue;
  if (device.devGetName(name) != LUMO_RETURN_SUCCESS) TOLK_LOG(kError) << "can not get device name!";
  return name;
}

std::optional<LumoPciInfo> pciInfo(const LumoAccessDevice& device) {
  LumoPciInfo info;
  const LumoReturn ret = device.devGetPciInfo(info);
  if (ret == LUMO_RETURN_SUCCESS) return info;
  TOLK_LOG(kError) << "can not get device pci info! error code[" << ret << "]";
  return std::nullopt;
}

std::string utilizationText(const LumoAccessDevice& device) {
  std::uint32_t percent = 0;
  const LumoReturn ret = device.gpuGetUtilization(percent);
  if (ret == LUMO_RETURN_SUCCESS) return std::to_string(percent) + "%";
  TOLK_LOG(kError) << "can not get gpu utilization! error code[" << ret << "]";
  return kNoValue;
}

std::string temperatureText(const LumoAccessDevice& device) {
  std::int32_t celsius = 0;
  const LumoReturn ret = device.gpuGetTemperature(celsius);
  if (ret == LUMO_RETURN_SUCCESS) return std::to_string(celsius) + "C";
  TOLK_LOG(kError) << "can not get gpu temperature! error code[" << ret << "]";
  return kNoValue;
}

struct MemoryUse {
  unsigned long long usedBytes = 0;
  unsigned long long totalBytes = 0;
};

std::optional<MemoryUse> memoryUse(const LumoAccessDevice& device) {
  MemoryUse use;
  if (device.memoryGetUsed(use.usedBytes) == LUMO_RETURN_SUCCESS &&
      device.memoryGetTotal(use.totalBytes) == LUMO_RETURN_SUCCESS) {
    return use;
  }
  TOLK_LOG(kError) << "can not get device memory info!";
  return std::nullopt;
}

/// Where guests can take a share of an instance's memory, its total says nothing.
std::string memoryText(const std::optional<MemoryUse>& use, DeviceType type) {
  if (!use) return kNoValue;
  if (type == DeviceType::kMpcInstance && hostHasMdevBus()) return mibText(use->usedBytes);
  return mibText(use->usedBytes) + "(" + mibText(use->totalBytes) + ")";
}

const char* mpcCapableText(const LumoAccessDevice& device) {
  bool capable = false;
  if (device.devGetMpcCapability(capable) != LUMO_RETURN_SUCCESS) return kNoValue;
  return capable ? "YES" : "NO";
}

const char* eccText(const LumoAccessDevice& device, unsigned architecture) {
  std::uint32_t current = 0;
  std::uint32_t pending = 0;
  if (architecture < kEccArchitecture || device.memoryGetEccMode(current, pending) != LUMO_RETURN_SUCCESS) {
    return kNoValue;
  }
  return current == 1 ? "On-die, Inline, EDC" : "On-die, EDC";
}

std::string processUseText(unsigned long long bytes) {
  return bytes < kMib ? "<1MiB" : mibText(bytes);
}

}  // namespace

std::shared_ptr<Step> TolkCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = selectDevices(indices)) return failure;

  nlohmann::ordered_json document;
  document["Timestamp"] = timestampText();
  std::string driverVersion = kNoValue;
  if (accessFactory->getAccessSystem()->getDriverVersion(driverVersion) != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get driver version!";
  }
  document["Driver Version"] = driverVersion;
  document["orvane-tolk"] = kVersion;
  document["Device"] = nlohmann::ordered_json::object();
  document["Process"] = nlohmann::ordered_json::object();

  const bool guest = driverMode() == DriverMode::kGuest;
  processesQueried_ = !guest;
  for (const auto index : indices) {
    for (int pass = 0; pass < kPasses; ++pass) {
      repeat_ = false;
      if (queryDeviceInfo(index, document) != LUMO_RETURN_SUCCESS) {
        return commandError(kNotAvailable, ExitCode::kQueryFailed);
      }
      if (!guest && queryMemoryInfo(index, document) != LUMO_RETURN_SUCCESS) processesQueried_ = false;
      if (!repeat_) break;
    }
  }
  return std::make_shared<TolkOutput>(std::move(document), processesQueried_, hasOption("-cf"));
}

std::shared_ptr<Step> TolkCommandAccess::selectDevices(std::vector<std::uint32_t>& indices) const {
  if (!hasOption("-i")) return listDevices(StartWording{}, indices);

  indices.resize(1);
  return findDevice(indices.front());
}

LumoReturn TolkCommandAccess::queryDeviceInfo(std::uint32_t index, nlohmann::ordered_json& document) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return LUMO_RETURN_UNKNOWN_ERROR;

  auto row = nlohmann::ordered_json::object();
  row["index"] = std::to_string(index);
  row["Name"] = nameText(*device);
  const auto pci = pciInfo(*device);
  row["PCIe"] = pci ? pci->sbdf : kNoValue;
  row["Pcie Lane Width"] =
      pci ? std::to_string(pci->curWidth) + "x(" + std::to_string(pci->maxWidth) + "x)" : kNoValue;
  row["%GPU"] = utilizationText(*device);
  const auto memory = memoryUse(*device);
  DeviceType type{};
  if (const LumoReturn ret = device->devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) return ret;
  row["MEM"] = memoryText(memory, type);
  row["DeviceType"] = deviceTypeText(type);
  if (driverMode() != DriverMode::kGuest) row["Temp"] = temperatureText(*device);
  row["MPC Capable"] = mpcCapableText(*device);
  row["ECC Mode"] = eccText(*device, pci ? architectureOf(pci->deviceId) : 0);
  const auto state = performanceState(*device);
  row["Perf"] = state ? std::string("P").append(std::to_string(*state)) : kNoValue;

  document["Device"][std::to_string(index)] = std::move(row);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn TolkCommandAccess::queryMemoryInfo(std::uint32_t index, nlohmann::ordered_json& document) {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) {
    TOLK_LOG(kError) << "can not get device by id! expect id[" << index << "]";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  const auto stateBefore = performanceState(*device);
  DeviceType type{};
  if (device->devGetDeviceType(type) == LUMO_RETURN_SUCCESS && type == DeviceType::kMpcParent) {
    return LUMO_RETURN_SUCCESS;
  }
  std::vector<LumoProcessMemUsage> processes;
  if (const LumoReturn ret = device->getProcessMemoryInfo(processes); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get running processes! error code[" << ret << "]";
    return ret;
  }
  auto rows = nlohmann::ordered_json::object();
  for (const auto& process : processes) {
    std::string name = kNoValue;
    if (accessFactory->getAccessSystem()->getProcessName(process.pid, name) != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "can not get the name of process by id[" << process.pid << "]";
    }
    rows[std::to_string(process.pid)] = {{"GPU ID", std::to_string(index)},
                                         {"PID", std::to_string(process.pid)},
                                         {"Process name", name},
                                         {"GPU Memory Usage", processUseText(process.gpuMemory)}};
  }
  auto& all = document["Process"];
  if (rows.empty()) {
    all.erase(std::to_string(index));
  } else {
    all[std::to_string(index)] = std::move(rows);
  }
  const auto stateAfter = performanceState(*device);
  repeat_ = hasChanged(stateBefore, stateAfter);
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
