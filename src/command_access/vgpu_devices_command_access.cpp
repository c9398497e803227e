#include "command_access/vgpu_devices_command_access.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "common_define.h"
#include "host_environment.h"

namespace tolk {

namespace {

constexpr StartWording kWording{.noDeviceLog = "No Orvane GPU Device Found."};

/// vGPUs of one GPU have smaller numbers.
constexpr unsigned long long kIdentifiersPerDevice = 10'000;

}  // namespace

std::shared_ptr<Step> VgpuDevicesCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  raiseOpenFileLimit();
  if (auto failure = startLibrary()) return failure;
  std::uint32_t count = 0;
  if (auto failure = countDevices(kWording, count)) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = findDevices(count, indices)) return failure;

  auto document = Json::object();
  if (queryDevices(indices, document) != LUMO_RETURN_SUCCESS) {
    return commandError(kNotAvailable, ExitCode::kUnsupported);
  }
  endLibrary();
  return makeOutput(std::move(document));
}

LumoReturn VgpuDevicesCommandAccess::queryDevices(const std::vector<std::uint32_t>& indices,
                                                  Json& document) const {
  for (const auto index : indices) {
    const auto device = deviceAt(index);
    if (!device) return LUMO_RETURN_NOT_FOUND;
    DeviceType type{};
    if (const LumoReturn ret = device->devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) return ret;
    if (type != DeviceType::kPhysical) {
      if (hasOption("-i")) return LUMO_RETURN_NOT_SUPPORTED;
      continue;
    }
    if (const LumoReturn ret = queryDeviceInfo(index, *device, document); ret != LUMO_RETURN_SUCCESS) {
      return ret;
    }
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn VgpuDevicesCommandAccess::visitVirtualDevices(const LumoAccessDevice& device, const Visit& visit) {
  std::vector<ActiveVirtDevice> vgpus;
  if (const LumoReturn ret = device.vGpuGetActiveVirtDevice(vgpus); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get active virtual device! error code[" << ret << "]";
    return ret;
  }
  for (const auto& vgpu : vgpus) {
    if (const LumoReturn ret = visit(LumoAccessVirtualDevice(vgpu)); ret != LUMO_RETURN_SUCCESS) return ret;
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn VgpuDevicesCommandAccess::getAllVirtualDevice(
    std::uint32_t index, const LumoAccessDevice& device, Json& document,
    const std::function<void(const LumoAccessVirtualDevice& vgpu, Json& rows)>& fill) {
  LumoPciInfo pci{};
  if (const LumoReturn ret = device.devGetPciInfo(pci); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "can not get device pci info! error code[" << ret << "]";
    return ret;
  }
  auto vgpus = Json::object();
  const LumoReturn ret = visitVirtualDevices(device, [&](const LumoAccessVirtualDevice& vgpu) {
    std::string uuid = kNoValue;
    if (const LumoReturn status = vgpu.devGetUUID(uuid); status != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "Failed to get vgpu uuid! error code[" << status << "]";
    }
    auto rows = Json::object();
    fill(vgpu, rows);
    vgpus["UUID " + uuid] = std::move(rows);
    return LUMO_RETURN_SUCCESS;
  });
  if (ret == LUMO_RETURN_SUCCESS) {
    document["GPU" + std::to_string(index) + " " + pci.sbdf] = std::move(vgpus);
  }
  return ret;
}

unsigned long long VgpuDevicesCommandAccess::uniqueIdentifier(std::uint32_t index, std::uint32_t vgpuId) {
  const unsigned long long identifier = index * kIdentifiersPerDevice + vgpuId;
  TOLK_LOG(kInfo) << "unique identifier = physical index * 10000 + vgpuid = " << identifier;
  return identifier;
}

}  // namespace tolk
