#include "command_access/query_command_access.h"

#include <algorithm>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/reorder_indices.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/query_output.h"
#include "common_define.h"
#include "driver_mode.h"
#include "rusk/text.h"

namespace tolk {

namespace {

ParsedOptions withSplitIds(ParsedOptions options) {
  const auto ids = options.find("-i");
  if (ids != options.end()) ids->second = rusk::split(ids->second.front(), ',');
  return options;
}

}  // namespace

const std::array<QueryCommandAccess::Section, 13> QueryCommandAccess::selectQueryFun = {{
    {"STATIC", queryStaticInfo, true},
    {"MEMORY", queryMemory, true},
    {"DISPLAY", queryIntfInfo},
    {"UTILIZATION", queryUtilizationInfo, true},
    {"TEMPERATURE", queryTemperatureInfo},
    {"POWER", queryPower},
    {"FAN", queryFanSpeed},
    {"CLOCK", queryClockInfo},
    {"VIDEO", queryVideoInfo},
    {"ECC", queryEcc},
    {"PAGE_RETIREMENT", queryRetiredPage},
    {"PERFORMANCE", queryPerfState},
    {"THERMAL_SLOWDOWN_STATS", queryThermalSlowdownCnt},
}};

QueryCommandAccess::QueryCommandAccess(ParsedOptions parsedOptions)
    : CommandAccessBase(withSplitIds(std::move(parsedOptions))) {}

std::shared_ptr<Step> QueryCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;

  Json document;
  document["Timestamp"] = timestampText();
  std::string driverVersion = kNoValue;
  const LumoReturn ret = accessFactory->getAccessSystem()->getDriverVersion(driverVersion);
  if (ret != LUMO_RETURN_SUCCESS) TOLK_LOG(kError) << "lumoSystemGetDriverVersion() failed, ret = " << ret;
  document["Driver Version"] = driverVersion;
  std::uint32_t count = 0;
  if (auto failure = countDevices(StartWording{}, count)) return failure;
  document["Attached GPUs"] = std::to_string(count);

  std::vector<std::uint32_t> indices;
  if (auto failure = selectDevices(count, indices)) return failure;
  for (const auto index : indices) {
    if (queryDeviceInfo(index, document) != LUMO_RETURN_SUCCESS) {
      return commandError(kNotAvailable, ExitCode::kUnsupported);
    }
  }
  endLibrary();
  const auto filename = options.find("-f");
  return std::make_shared<QueryOutput>(std::move(document), hasOption("--json"),
                                       filename == options.end() ? std::string() : filename->second.front());
}

std::shared_ptr<Step> QueryCommandAccess::selectDevices(std::uint32_t count,
                                                        std::vector<std::uint32_t>& indices) const {
  if (!hasOption("-i")) return orderDevices(StartWording{}, count, indices);

  indices.resize(1);
  return findDevice(indices.front());
}

LumoReturn QueryCommandAccess::queryDeviceInfo(std::uint32_t index, Json& document) const {
  TOLK_LOG(kTrace) << "index = " << index;
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) {
    TOLK_LOG(kError) << "can not get device! device id[" << index << "]";
    return LUMO_RETURN_UNKNOWN_ERROR;
  }
  return querySelectInfo(*device, sectionKeys(), document);
}

std::vector<std::string> QueryCommandAccess::sectionKeys() const {
  const auto asked = options.find("-d");
  if (asked != options.end()) return rusk::split(asked->second.front(), ',');

  const bool guest = driverMode() == DriverMode::kGuest;
  std::vector<std::string> keys;
  for (const auto& section : selectQueryFun) {
    if (!guest || section.shownInGuest) keys.emplace_back(section.key);
  }
  return keys;
}

LumoReturn QueryCommandAccess::querySelectInfo(const LumoAccessDevice& device,
                                               const std::vector<std::string>& keys, Json& document) {
  const auto stateBefore = performanceState(device);
  const LumoReturn ret = querySections(device, keys, document);
  if (ret != LUMO_RETURN_SUCCESS) return ret;

  const auto stateAfter = performanceState(device);
  return hasChanged(stateBefore, stateAfter) ? querySections(device, keys, document) : ret;
}

LumoReturn QueryCommandAccess::querySections(const LumoAccessDevice& device,
                                             const std::vector<std::string>& keys, Json& document) {
  for (const auto& key : keys) {
    const auto* const section = std::ranges::find_if(
        selectQueryFun, [&key](const Section& candidate) { return candidate.key == key; });
    if (section == selectQueryFun.end()) {
      TOLK_LOG(kError) << "there is no element[" << key << "] in selectQueryFun!";
      return LUMO_RETURN_UNKNOWN_ERROR;
    }
    const LumoReturn ret = section->query(device, document);
    if (ret != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << "query[" << key << "] error! error code[" << ret << "]";
      return ret;
    }
  }
  return LUMO_RETURN_SUCCESS;
}

}  // namespace tolk
