#include "command_access/lumo_access/lumo_access_device.h"

#include <algorithm>
#include <array>

#include "command_access/lumo_access/lumo_call.h"
#include "command_access/lumo_access/pci_address_text.h"

namespace tolk {

namespace {

constexpr std::size_t kUuidSize = 48;
constexpr std::size_t kTextSize = 256;

/// The library's numbers of the MPC type.
constexpr unsigned kMpcTypeParent = 1;
constexpr unsigned kMpcTypeInstance = 2;

struct ReturnText {
  LumoReturn code;
  const char* text;
};

constexpr std::array kReturnTexts{
    ReturnText{LUMO_RETURN_SUCCESS, "The operation was successful!"},
    ReturnText{LUMO_RETURN_DRIVER_NOT_LOADED, "Orvane driver is not loaded!"},
    ReturnText{LUMO_RETURN_DRIVER_ACCESS_FAILED, "Access to the driver is failed!"},
    ReturnText{LUMO_RETURN_INVALID_ARGUMENT, "One or more supplied arguments is/are invalid!"},
    ReturnText{LUMO_RETURN_NOT_SUPPORTED, "The requested operation is not available on target device!"},
    ReturnText{LUMO_RETURN_INSUFFICIENT_PERMISSIONS, "The current user does not have permission for operation!"},
    ReturnText{LUMO_RETURN_INSUFFICIENT_SIZE,
               "The space allocated by user is insufficient to hold the requested data!"},
    ReturnText{LUMO_RETURN_NOT_FOUND, "A query to find an object was unsuccessful!"},
    ReturnText{LUMO_RETURN_INSUFFICIENT_MEMORY, "There is not enough system memory to finish the operation!"},
    ReturnText{LUMO_RETURN_UNKNOWN_ERROR, "An internal unspecified error occurred!"},
};

unsigned mpcType(unsigned long long property) {
  return (property & LUMO_PROPERTY_MPC_TYPE_MASK) >> LUMO_PROPERTY_MPC_TYPE_SHIFT;
}

}  // namespace

const char* LumoAccessDevice::getReturnText(LumoReturn code) {
  const auto found = std::ranges::find(kReturnTexts, code, &ReturnText::code);
  return found == kReturnTexts.end() ? kReturnTexts.back().text : found->text;
}

LumoReturn LumoAccessDevice::devGetIndex(std::uint32_t& index) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), index, modules_.device);
}

LumoReturn LumoAccessDevice::devGetUUID(std::string& uuid) const {
  return queryLumoText<kUuidSize>(LUMO_ENTRY(lumoDeviceGetUUID), uuid, modules_.device);
}

LumoReturn LumoAccessDevice::devGetName(std::string& name) const {
  const LumoReturn ret = queryLumoText<kTextSize>(LUMO_ENTRY(lumoDeviceGetName), name, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;

  unsigned long long property = 0;
  LumoMpcProfile profile{};
  if (queryLumo(LUMO_ENTRY(lumoDeviceGetProperty), property, modules_.device) == LUMO_RETURN_SUCCESS &&
      mpcType(property) == kMpcTypeInstance &&
      queryLumo(LUMO_ENTRY(lumoDeviceGetMpcProfileInfo), profile, modules_.device) == LUMO_RETURN_SUCCESS &&
      profile.name[0] != '\0') {
    name.append(1, ' ').append(profile.name, ::strnlen(profile.name, sizeof profile.name));
  }
  return ret;
}

LumoReturn LumoAccessDevice::devGetPciInfo(LumoPciInfo& info) const {
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetPciInfo), info, modules_.device);
  if (ret == LUMO_RETURN_SUCCESS) widenPciDomain(info.sbdf);
  return ret;
}

LumoReturn LumoAccessDevice::devGetMpcCapability(bool& capable) const {
  unsigned long long property = 0;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetProperty), property, modules_.device);
  if (ret == LUMO_RETURN_SUCCESS) capable = (property & LUMO_PROPERTY_MPC_CAPABLE) != 0;
  return ret;
}

LumoReturn LumoAccessDevice::devGetDeviceType(DeviceType& type) const {
  unsigned long long property = 0;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetProperty), property, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  if (mpcType(property) == kMpcTypeParent) {
    type = DeviceType::kMpcParent;
  } else if (mpcType(property) == kMpcTypeInstance) {
    type = DeviceType::kMpcInstance;
  } else {
    type = (property & LUMO_PROPERTY_ROLE_MASK) != 0 ? DeviceType::kVirtual : DeviceType::kPhysical;
  }
  return ret;
}

LumoReturn LumoAccessDevice::deviceGetPerfState(std::uint32_t& state) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetPerformanceState), state, modules_.device);
}

LumoReturn LumoAccessDevice::gpuGetUtilization(std::uint32_t& utilization) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetUtilization), utilization, modules_.gpu);
}

LumoReturn LumoAccessDevice::gpuGetTemperature(std::int32_t& temperature) const {
  return queryLumo(LUMO_ENTRY(lumoGpuGetTemperature), temperature, modules_.gpu);
}

LumoReturn LumoAccessDevice::memoryGetTotal(unsigned long long& totalBytes) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetTotal), totalBytes, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetUsed(unsigned long long& usedBytes) const {
  return queryLumo(LUMO_ENTRY(lumoMemoryGetUsed), usedBytes, modules_.memory);
}

LumoReturn LumoAccessDevice::memoryGetEccMode(std::uint32_t& current, std::uint32_t& pending) const {
  std::uint32_t now = 0;
  std::uint32_t later = 0;
  const LumoReturn ret = callLumo(LUMO_ENTRY(lumoMemoryGetEccMode), modules_.memory, &now, &later);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  current = now;
  pending = later;
  return ret;
}

LumoReturn LumoAccessDevice::getProcessMemoryInfo(std::vector<LumoProcessMemUsage>& processes) const {
  std::vector<LumoProcessMemUsage> found;
  LumoReturn ret = LUMO_RETURN_INSUFFICIENT_SIZE;
  // Processes come at any moment, also between count and list, so a list that has grown is asked again.
  for (int tries = 0; tries < 2 && ret == LUMO_RETURN_INSUFFICIENT_SIZE; ++tries) {
    ret = queryLumoList(LUMO_ENTRY(lumoDeviceCountProcessMemoryUsages),
                        LUMO_ENTRY(lumoDeviceGetProcessMemoryUsages), found, modules_.device);
  }
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  std::erase_if(found, [](const LumoProcessMemUsage& usage) { return usage.pid == 0; });
  processes = std::move(found);
  return ret;
}

LumoReturn LumoAccessDevice::getMpcInstances(std::vector<MpcInstance>& instances) const {
  std::vector<LumoDevice*> handles;
  LumoReturn ret = queryLumoList(LUMO_ENTRY(lumoDeviceCountMpcInstances),
                                 LUMO_ENTRY(lumoDeviceGetMpcInstances), handles, modules_.device);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  std::erase(handles, nullptr);

  std::vector<MpcInstance> found(handles.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcInstanceIndex), found[i].instanceIndex, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), found[i].deviceIndex, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
    ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcProfileInfo), found[i].profile, handles[i]);
    if (ret != LUMO_RETURN_SUCCESS) return ret;
  }
  instances = std::move(found);
  return ret;
}

LumoReturn LumoAccessDevice::getParentDeviceIndex(std::uint32_t& index) const {
  LumoDevice* parent = nullptr;
  const LumoReturn ret = queryLumo(LUMO_ENTRY(lumoDeviceGetMpcParentDevice), parent, modules_.device);
  return ret != LUMO_RETURN_SUCCESS ? ret : queryLumo(LUMO_ENTRY(lumoDeviceGetIndex), index, parent);
}

}  // namespace tolk
