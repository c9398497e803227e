#include <array>
#include <string>

#include "command_access/query_command_access.h"
#include "command_access/query_command_access_rows.h"
#include "common_define.h"
#include "driver_mode.h"
#include "host_environment.h"

namespace tolk {

namespace {

using Texts = ReportRow::Texts;

/// The one architecture whose memory is told by its bandwidth alone.
constexpr unsigned kBandwidthArchitecture = 4;

constexpr const char* kMemoryTypes[] = {"LPDDR4", "GDDR6"};

std::string lanes(std::uint32_t width) {
  return std::to_string(width) + "x";
}

LumoReturn readSlot(const ReportSection& section, Texts& texts) {
  LumoPciSlotInfo slot{};
  const LumoReturn ret = section.device.deviceGetPcieSlotInfo(slot);
  if (ret == LUMO_RETURN_SUCCESS) {
    texts[0] =
        std::to_string(slot.number).append("(").append(slot.name, ::strnlen(slot.name, sizeof slot.name));
    texts[0] += ')';
  }
  return ret;
}

LumoReturn readMemoryType(const ReportSection& section, Texts& texts) {
  std::uint32_t type = 0;
  const LumoReturn ret = section.device.memoryGetType(type);
  texts[0] = type < std::size(kMemoryTypes) ? kMemoryTypes[type] : kNoValue;
  return ret;
}

LumoReturn readMemorySpeed(const ReportSection& section, Texts& texts) {
  std::uint32_t speed = 0;
  const LumoReturn ret = section.device.memoryGetSpeed(speed);
  texts = {std::to_string(speed) + "Mbps", std::to_string(speed) + "MT/s"};
  return ret;
}

/// A row of the PCI record that every section starts with.
template <auto textOf>
constexpr auto readPci = readKnown<[](const ReportSection& section) { return textOf(section.pci); }>;

constexpr ReportRow kStaticRows[] = {
    {.path = "Product Name",
     .read = readValue<&LumoAccessDevice::devGetName>,
     .failureLog = "can not get device name! error code["},
    {.path = "Product Brand", .read = readKnown<[](const ReportSection&) { return "OVT"; }>},
    {.path = "GPU UUID",
     .read = readValue<&LumoAccessDevice::devGetUUID>,
     .failureLog = "can not get device uuid! error code[",
     .hiddenInGuest = true},
    {.path = "Serial Number",
     .read = readValue<&LumoAccessDevice::deviceGetSerialNumber>,
     .failureLog = "can not get device serial number! error code[",
     .hiddenInGuest = true},
    {.path = "DeviceType", .read = readValue<&LumoAccessDevice::devGetDeviceType>},
    {.path = "MPC Capable", .read = readValue<&LumoAccessDevice::devGetMpcCapability>, .hiddenInGuest = true},
    {.path = "OVBios Version",
     .read = readValue<&LumoAccessDevice::devGetOvBiosVersion>,
     .failureLog = "can not get OvBios version! error code[",
     .hiddenInGuest = true},
    {.path = "PCI/Bus", .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.bus, 2); }>},
    {.path = "PCI/Device", .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.device, 2); }>},
    {.path = "PCI/Domain", .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.domain, 4); }>},
    {.path = "PCI/Vendor ID",
     .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.vendorId, 4); }>},
    {.path = "PCI/Device ID",
     .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.deviceId, 4); }>},
    {.path = "PCI/Bus ID", .read = readPci<[](const LumoPciInfo& pci) { return pci.sbdf; }>},
    {.path = "PCI/Subsystem Vendor ID",
     .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.subsystemId & 0xffff, 4); }>},
    {.path = "PCI/Subsystem Device ID",
     .read = readPci<[](const LumoPciInfo& pci) { return hexText(pci.subsystemId >> 16, 4); }>},
    {.path = "PCI/Slot ID(Name)",
     .read = readSlot,
     .failureLog = "can not get device slot Info! error code[",
     .hiddenInGuest = true},
    {.path = "PCI/GPU Link Info/PCIe Generation/Max",
     .read = readPci<[](const LumoPciInfo& pci) { return pcieGenerationText(pci.maxSpeed); }>},
    {.path = "PCI/GPU Link Info/PCIe Generation/Current",
     .read = readPci<[](const LumoPciInfo& pci) { return pcieGenerationText(pci.curSpeed); }>},
    {.path = "PCI/GPU Link Info/Link Width/Max",
     .read = readPci<[](const LumoPciInfo& pci) { return lanes(pci.maxWidth); }>},
    {.path = "PCI/GPU Link Info/Link Width/Current",
     .read = readPci<[](const LumoPciInfo& pci) { return lanes(pci.curWidth); }>},
};

constexpr ReportRow kBandwidthRow = {.path = "FB Memory Spec/Bandwidth",
                                     .read = readValue<&LumoAccessDevice::memoryGetBandwidth>,
                                     .unit = "GBps",
                                     .failureLog = "failed to get memory bandwidth!"};

constexpr ReportRow kMemorySpecRows[] = {
    {.path = "FB Memory Spec/Type",
     .read = readMemoryType,
     .failureLog = "failed to get memory type! error code["},
    {.path = "FB Memory Spec/Vendor",
     .read = readValue<&LumoAccessDevice::memoryGetVendor>,
     .failureLog = "failed to get memory vendor! error code["},
    {.path = "FB Memory Spec/Speed",
     .read = readMemorySpeed,
     .failureLog = "failed to get memory speed! error code[",
     .secondPath = "FB Memory Spec/Transfer Rates"},
    {.path = "FB Memory Spec/Bandwidth",
     .read = readValue<&LumoAccessDevice::memoryGetBandwidth>,
     .unit = "GBps",
     .failureLog = "failed to get memory bandwidth! error code["},
    {.path = "FB Memory Spec/Bus Width",
     .read = readValue<&LumoAccessDevice::memoryGetBusWidth>,
     .unit = "bits",
     .failureLog = "failed to get memory bus width! error code["},
};

}  // namespace

LumoReturn QueryCommandAccess::queryStaticInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  return queryRows(kStaticRows, device, document);
}

LumoReturn QueryCommandAccess::queryMemory(const LumoAccessDevice& device, Json& document) {
  if (driverMode() != DriverMode::kGuest) queryMemorySpec(device, document);
  queryMemoryInfo(device, document);
  return LUMO_RETURN_SUCCESS;  // memory that cannot be told leaves the rest of the report
}

LumoReturn QueryCommandAccess::queryMemorySpec(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  if (section.architecture() == kBandwidthArchitecture) {
    TOLK_LOG(kError) << "device arch number is " << section.architecture();
    section.putRows({&kBandwidthRow, 1});
  } else {
    section.putRows(kMemorySpecRows);
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryMemoryInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();
  DeviceType type{};
  if (const LumoReturn ret = device.devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) return ret;

  unsigned long long total = 0;
  unsigned long long used = 0;
  const bool hasTotal = device.memoryGetTotal(total) == LUMO_RETURN_SUCCESS;
  const bool hasUsed = device.memoryGetUsed(used) == LUMO_RETURN_SUCCESS;
  const bool known = hasTotal && hasUsed;
  // Where guests can take a share of an instance's memory, its total says nothing.
  const bool totalCounts = known && !(type == DeviceType::kMpcInstance && hostHasMdevBus());
  section.put("FB Memory Usage/Total", totalCounts ? mibText(total) : kNoValue);
  section.put("FB Memory Usage/Used", known ? mibText(used) : kNoValue);
  section.put("FB Memory Usage/Free", totalCounts ? mibText(total - used) : kNoValue);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryIntfInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();
  DeviceType type{};
  if (const LumoReturn ret = device.devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get device type";
    return ret;
  }

  std::uint32_t count = 0;
  if (device.deviceCountDispIntf(count) != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get display interface count";
    count = 0;
  } else if (count == 0) {
    TOLK_LOG(kError) << "no display interface";
  }
  if (count == 0) section.put("Display Interface", kNoValue);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::string name = "Display Interface/Interface " + std::to_string(i);
    LumoDispIntfSpec spec{};
    const bool known = device.deviceGetDispIntfSpec(i, spec) == LUMO_RETURN_SUCCESS;
    if (!known) TOLK_LOG(kError) << "failed to get display " << i << "'s interface specification";
    section.put(name + " Type", known ? displayTypeText(spec.type) : kNoValue);
    section.put(name + " Max Resolution", known ? resolutionText(spec) : kNoValue);
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
