#include <algorithm>
#include <string>

#include "command_access/query_command_access.h"
#include "command_access/query_command_access_rows.h"
#include "command_access/session_stats.h"
#include "common_define.h"
#include "driver_mode.h"
#include "host_environment.h"

namespace tolk {

namespace {

using Texts = ReportRow::Texts;

/// First architecture that has no limits of clocks to tell.
constexpr unsigned kNoMaxClocksArchitecture = 4;

/// Models that do not show the limits of their clocks.
constexpr const char* kWithoutMaxClocks[] = {"B230E", "OVT B230E", "E315", "OVT B230", "B230"};

LumoReturn readVpuUtilization(const ReportSection& section, Texts& texts) {
  LumoVpuUtilization busy{};
  const LumoReturn ret = section.device.vpuGetUtilization(busy);
  texts = {std::to_string(busy.encoder), std::to_string(busy.decoder)};
  return ret;
}

LumoReturn readPowerConstraints(const ReportSection& section, Texts& texts) {
  double minimum = 0;
  double maximum = 0;
  const LumoReturn ret = section.device.getPowerLimitConstraints(minimum, maximum);
  texts = {wattsText(minimum), wattsText(maximum)};
  return ret;
}

constexpr ReportRow kGpuUtilizationRow = {.path = "Utilization/Gpu",
                                          .read = readValue<&LumoAccessDevice::gpuGetUtilization>,
                                          .unit = "%",
                                          .failureLog = "can not get gpu utilization! error code["};
constexpr ReportRow kMemoryUtilizationRow = {.path = "Utilization/Memory",
                                             .read = readValue<&LumoAccessDevice::memoryGetUtilization>,
                                             .unit = "%",
                                             .failureLog = "can not get memory utilization! error code["};
constexpr ReportRow kVpuUtilizationRow = {.path = "Utilization/Encoder",
                                          .read = readVpuUtilization,
                                          .unit = "%",
                                          .failureLog = "can not get vpu utilization! error code[",
                                          .secondPath = "Utilization/Decoder"};

constexpr ReportRow kTemperatureRows[] = {
    {.path = "Temperature/GPU Current Temp",
     .read = readValue<&LumoAccessDevice::gpuGetTemperature>,
     .unit = "C",
     .failureLog = "can not get gpu temperature! error code["},
};

constexpr ReportRow kPowerRows[] = {
    {.path = "Power Readings/Power Draw ",  // sic
     .read = readValue<&LumoAccessDevice::getPowerUsage>,
     .unit = "W"},
    {.path = "Power Readings/Current Power Limit",
     .read = readValue<&LumoAccessDevice::getCurrentPowerLimit>,
     .unit = "W"},
    {.path = "Power Readings/Requested Power Limit",
     .read = readValue<&LumoAccessDevice::getRequestedPowerLimit>,
     .unit = "W"},
    {.path = "Power Readings/Default Power Limit",
     .read = readValue<&LumoAccessDevice::getDefaultPowerLimit>,
     .unit = "W"},
    {.path = "Power Readings/Min Power Limit",
     .read = readPowerConstraints,
     .unit = "W",
     .secondPath = "Power Readings/Max Power Limit"},
};

constexpr ReportRow kClockRows[] = {
    {.path = "Clocks/Graphics",
     .read = readValue<&LumoAccessDevice::gpuGetClock>,
     .unit = "MHz",
     .failureLog = "can not get gpu clock! error code["},
    {.path = "Clocks/Memory",
     .read = readValue<&LumoAccessDevice::memoryGetClock>,
     .unit = "MHz",
     .failureLog = "can not get memmory clock! error code["},  // sic
    {.path = "Clocks/Video",
     .read = readValue<&LumoAccessDevice::vpuGetClock>,
     .unit = "MHz",
     .failureLog = "can not get vpu clock! error code["},
};

constexpr ReportRow kMaxClockRows[] = {
    {.path = "Max Clocks/Graphics",
     .read = readValue<&LumoAccessDevice::gpuGetMaxClock>,
     .unit = "MHz",
     .failureLog = "can not get gpu max clock! error code["},
    {.path = "Max Clocks/Memory",
     .read = readValue<&LumoAccessDevice::memoryGetMaxClock>,
     .unit = "MHz",
     .failureLog = "can not get memory max clock! error code["},
    {.path = "Max Clocks/Video",
     .read = readValue<&LumoAccessDevice::vpuGetMaxClock>,
     .unit = "MHz",
     .failureLog = "can not get vpu max clock! error code["},
};

bool showsMaxClocks(const ReportSection& section) {
  if (section.architecture() >= kNoMaxClocksArchitecture) return false;
  std::string name;
  section.device.devGetName(name);
  if (std::ranges::find(kWithoutMaxClocks, name) == std::end(kWithoutMaxClocks)) return true;
  TOLK_LOG(kError) << name << " do not show max clocks";
  return false;
}

void putSessionStats(ReportSection& section, const std::string& group,
                     const std::optional<SessionStats>& stats) {
  section.put(group + "/Active Sessions", stats ? std::to_string(stats->active) : kNoValue);
  section.put(group + "/Average FPS", stats ? std::to_string(stats->averageFps) : kNoValue);
}

}  // namespace

LumoReturn QueryCommandAccess::queryUtilizationInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();
  DeviceType type{};
  if (const LumoReturn ret = device.devGetDeviceType(type); ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get device type";
    return ret;
  }

  section.putRows({&kGpuUtilizationRow, 1});
  if (type == DeviceType::kMpcInstance && hostHasMdevBus()) {
    section.put(kMemoryUtilizationRow.path, kNoValue);
  } else {
    section.putRows({&kMemoryUtilizationRow, 1});
  }
  section.putRows({&kVpuUtilizationRow, 1});
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryTemperatureInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  return queryRows(kTemperatureRows, device, document);
}

LumoReturn QueryCommandAccess::queryPower(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  return queryRows(kPowerRows, device, document);
}

LumoReturn QueryCommandAccess::queryFanSpeed(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  std::uint32_t count = 0;
  const bool known = device.devGetFanNum(count) == LUMO_RETURN_SUCCESS;
  section.put("Fan/Channel", known ? std::to_string(count) : kNoValue);
  for (std::uint32_t fan = 0; known && fan < count; ++fan) {
    std::uint32_t percent = 0;
    const bool told = device.devGetFanSpeed(fan, percent) == LUMO_RETURN_SUCCESS;
    section.put("Fan/Speed/Fan" + std::to_string(fan), told ? std::to_string(percent) + "%" : kNoValue);
  }
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryClockInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  section.putRows(kClockRows);
  if (showsMaxClocks(section)) section.putRows(kMaxClockRows);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn QueryCommandAccess::queryVideoInfo(const LumoAccessDevice& device, Json& document) {
  TOLK_LOG(kTrace);
  ReportSection section(device, document);
  if (section.status() != LUMO_RETURN_SUCCESS) return section.status();

  // There the sessions are those of guests, and are told with them.
  const bool ofGuests = driverMode() == DriverMode::kVirtualisationHost;
  putSessionStats(section, "Encoder Stats", ofGuests ? std::nullopt : encoderStats(device));
  putSessionStats(section, "Decoder Stats", ofGuests ? std::nullopt : decoderStats(device));
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
