#include "command_access/lumo_access/lumo_access_device.h"

#include <algorithm>
#include <array>

#include "command_access/lumo_access/lumo_call.h"
#include "command_access/lumo_access/pci_address_text.h"

namespace tolk {

namespace {

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
    ReturnText{LUMO_RETURN_INSUFFICIENT_PERMISSIONS,
               "The current user does not have permission for operation!"},
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
  return queryLumoText<LUMO_UUID_SIZE>(LUMO_ENTRY(lumoDeviceGetUUID), uuid, modules_.device);
}

LumoReturn LumoAccessDevice::deviceGetSerialNumber(std::string& serial) const {
  return queryLumoText<kTextSize>(LUMO_ENTRY(lumoDeviceGetSerialNumber), serial, modules_.device);
}

LumoReturn LumoAccessDevice::deviceGetPcieSlotInfo(LumoPciSlotInfo& slot) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetPcieSlotInfo), slot, modules_.device);
}

LumoReturn LumoAccessDevice::devGetBranddType(std::uint32_t& brand) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetBrand), brand, modules_.device);
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

LumoReturn LumoAccessDevice::devGetFanNum(std::uint32_t& count) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceCountFan), count, modules_.device);
}

LumoReturn LumoAccessDevice::devGetFanSpeed(std::uint32_t fan, std::uint32_t& percent) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetFanSpeed), percent, modules_.device, fan);
}

LumoReturn LumoAccessDevice::devGetOvBiosVersion(std::string& version) const {
  return queryLumoText<kTextSize>(LUMO_ENTRY(lumoDeviceGetOvBiosVersion), version, modules_.device);
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

LumoReturn LumoAccessDevice::deviceCountDispIntf(std::uint32_t& count) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceCountDisplayInterface), count, modules_.device);
}

LumoReturn LumoAccessDevice::deviceGetDispIntfSpec(std::uint32_t interface, LumoDispIntfSpec& spec) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetDisplayInterfaceSpec), spec, modules_.device, interface);
}

LumoReturn LumoAccessDevice::deviceReset() {
  return callLumo(LUMO_ENTRY(lumoDeviceReset), modules_.device);
}

LumoReturn LumoAccessDevice::deviceGetPerfState(std::uint32_t& state) const {
  return queryLumo(LUMO_ENTRY(lumoDeviceGetPerformanceState), state, modules_.device);
}

}  // namespace tolk
