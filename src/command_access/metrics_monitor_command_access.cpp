#include "command_access/metrics_monitor_command_access.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <string>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/monitor_wording.h"
#include "command_access/selected_fields.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/metrics_monitor_output.h"
#include "common_define.h"

namespace tolk {

namespace {

/// The second pass is for a device that changed its performance state during the first.
constexpr int kPasses = 2;

struct SlowdownStatistics {
  std::uint32_t count = 0;
  std::uint32_t totalTimeMs = 0;
};

/// What a device's line is made of.
struct MetricsSource {
  const LumoAccessDevice& device;
  std::uint32_t index;
  std::chrono::system_clock::time_point time;
  std::optional<SlowdownStatistics> slowdown;  ///< read once for all fields that show a part of it
};

template <auto query, class Number>
LumoReturn queryNumber(const MetricsSource& source, std::string& text) {
  Number number{};
  const LumoReturn ret = (source.device.*query)(number);
  if (ret == LUMO_RETURN_SUCCESS) text = std::to_string(number);
  return ret;
}

LumoReturn queryPower(const MetricsSource& source, std::string& text) {
  double watts = 0;
  const LumoReturn ret = source.device.getPowerUsage(watts);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  std::array<char, 16> digits;  // 32 bits of milliwatts
  std::snprintf(digits.data(), digits.size(), "%.2f", watts);
  text = digits.data();
  return ret;
}

/// That the statistics cannot be had has been logged when they were read.
template <std::uint32_t SlowdownStatistics::*part>
LumoReturn getSlowdown(const MetricsSource& source, std::string& text) {
  if (source.slowdown) text = std::to_string((*source.slowdown).*part);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn getIndex(const MetricsSource& source, std::string& text) {
  text = std::to_string(source.index);
  return LUMO_RETURN_SUCCESS;
}

LumoReturn getTime(const MetricsSource& source, std::string& text) {
  text = localTimeMsText(source.time);
  return LUMO_RETURN_SUCCESS;
}

std::optional<SlowdownStatistics> slowdownStatistics(const LumoAccessDevice& device) {
  SlowdownStatistics statistics;
  const LumoReturn ret = device.gpuGetThermalSlowdownStatistics(statistics.count, statistics.totalTimeMs);
  if (ret == LUMO_RETURN_SUCCESS) return statistics;
  TOLK_LOG(kError) << "Failed to get thermal slowdown statistics, ret = " << ret;
  return std::nullopt;
}

}  // namespace

struct MetricsMonitorField {
  std::string_view name;
  LumoReturn (*valueOf)(const MetricsSource&, std::string& text);  ///< leaves the text alone on failure
  const char* failure = "";
  bool showsSlowdown = false;
};

namespace {

constexpr MetricsMonitorField kFields[] = {
    {"GpuId", getIndex},
    {"Temp", queryNumber<&LumoAccessDevice::gpuGetTemperature, std::int32_t>,
     "Failed to get GPU temperature, ret = "},
    {"Power", queryPower, "Failed to get GPU power usage, ret = "},
    {"Freq", queryNumber<&LumoAccessDevice::gpuGetClock, std::uint32_t>, "Failed to get GPU clock, ret = "},
    {.name = "SlowdownCnt", .valueOf = getSlowdown<&SlowdownStatistics::count>, .showsSlowdown = true},
    {.name = "TotalSlowdownTimeMs",
     .valueOf = getSlowdown<&SlowdownStatistics::totalTimeMs>,
     .showsSlowdown = true},
    {"Time", getTime},
};

}  // namespace

std::shared_ptr<Step> MetricsMonitorCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  if (auto failure = startLibrary()) return failure;
  std::uint32_t count = 0;
  if (auto failure = countDevices(kMonitorWording, count)) return failure;
  if (auto failure = selectFields(options.at("-mm").front(), kFields, selected_)) return failure;
  std::vector<std::uint32_t> indices;
  if (auto failure = selectDevices(count, indices)) return failure;

  auto document = nlohmann::ordered_json::object();
  for (const auto index : indices) {
    if (metricsMonitor(index, document) != LUMO_RETURN_SUCCESS) {
      return commandError(kMonitorNotAvailable, ExitCode::kQueryFailed);
    }
  }
  endLibrary();
  std::vector<std::string> names;
  for (const auto* const field : selected_) names.emplace_back(field->name);
  return std::make_shared<MetricsMonitorOutput>(std::move(document), std::move(names));
}

std::shared_ptr<Step> MetricsMonitorCommandAccess::selectDevices(std::uint32_t count,
                                                                 std::vector<std::uint32_t>& indices) const {
  if (!hasOption("-i")) {
    indices.resize(count);
    std::iota(indices.begin(), indices.end(), 0u);
    return nullptr;
  }
  for (const auto& text : rusk::split(options.at("-i").front(), ',')) {
    const std::uint64_t asked = std::strtoul(text.c_str(), nullptr, 10);
    const auto index = static_cast<std::uint32_t>(asked);
    if (asked >= count) {
      return commandError(formatMessage("Error: the requested GPU ID %u is out of range", index),
                          ExitCode::kBadArgument);
    }
    indices.push_back(index);
  }
  return nullptr;
}

LumoReturn MetricsMonitorCommandAccess::metricsMonitor(std::uint32_t index,
                                                       nlohmann::ordered_json& document) const {
  const auto device = accessFactory->getAccessDeviceById(index);
  if (!device) return LUMO_RETURN_NOT_FOUND;

  for (int pass = 0; pass < kPasses; ++pass) {
    const auto stateBefore = performanceState(*device);
    document[std::to_string(index)] = queryFields(index, *device);
    const auto stateAfter = performanceState(*device);
    if (!hasChanged(stateBefore, stateAfter)) break;
  }
  return LUMO_RETURN_SUCCESS;
}

nlohmann::ordered_json MetricsMonitorCommandAccess::queryFields(std::uint32_t index,
                                                                const LumoAccessDevice& device) const {
  MetricsSource source{.device = device, .index = index, .time = {}, .slowdown = std::nullopt};
  if (std::ranges::any_of(selected_, &MetricsMonitorField::showsSlowdown)) {
    source.slowdown = slowdownStatistics(device);
  }
  source.time = std::chrono::system_clock::now();

  auto row = nlohmann::ordered_json::object();
  for (const auto* const field : selected_) {
    const std::string name(field->name);
    if (row.contains(name)) continue;
    std::string text = kNoValue;
    if (const LumoReturn ret = field->valueOf(source, text); ret != LUMO_RETURN_SUCCESS) {
      TOLK_LOG(kError) << field->failure << ret;
    }
    row[name] = std::move(text);
  }
  return row;
}

}  // namespace tolk
