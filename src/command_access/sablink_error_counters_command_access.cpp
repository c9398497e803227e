#include "command_access/sablink_error_counters_command_access.h"

#include <cstdlib>
#include <iterator>
#include <utility>

#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/sablink_error_counter.h"
#include "common_define.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

/// By the number of the counter.
constexpr const char* kCounters[] = {"replay errors", "recovery errors", "framing errors",
                                     "fec correction count"};

std::string counterText(const LumoAccessDevice& device, std::uint32_t link, std::uint32_t counter) {
  unsigned long long count = 0;
  if (device.getSablinkErrCounter(link, counter, count) != LUMO_RETURN_SUCCESS) return kNoValue;
  return std::to_string(count);
}

Json describeLink(const LumoAccessDevice& device, std::uint32_t link) {
  auto entry = Json::object();
  for (std::uint32_t counter = 0; counter < std::size(kCounters); ++counter) {
    entry[kCounters[counter]] = counterText(device, link, counter);
  }
  return entry;
}

}  // namespace

std::shared_ptr<Step> SablinkErrorCountersCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  std::uint32_t count = 0;
  if (auto failure = startWithDevices(count)) return failure;
  Targets targets;
  if (auto failure = selectDevices(count, targets)) return failure;

  auto document = Json::object();
  for (const auto& target : targets) {
    if (querySablinkErrorCounters(target, document) != LUMO_RETURN_SUCCESS) {
      return commandError("Error: failed to query sablink error counters on target device",
                          ExitCode::kQueryFailed);
    }
  }
  return std::make_shared<SablinkErrorCounter>(std::move(document));
}

std::shared_ptr<Step> SablinkErrorCountersCommandAccess::selectDevices(std::uint32_t count,
                                                                       Targets& targets) const {
  if (!hasOption("-i")) return listTargets(count, targets);
  for (const auto& text : options.at("-i")) {
    const std::int64_t asked = std::strtol(text.c_str(), nullptr, 10);
    targets.push_back({.index = static_cast<std::uint32_t>(asked), .device = deviceAt(asked)});
    if (!targets.back().device) {
      TOLK_LOG(kError) << "failed to get device by id! expect id[" << asked << "]";
      return commandError("Error: the given device id is not legal", ExitCode::kBadArgument);
    }
  }
  return nullptr;
}

LumoReturn SablinkErrorCountersCommandAccess::querySablinkErrorCounters(const Target& target,
                                                                        Json& document) const {
  if (!target.device) {
    TOLK_LOG(kError) << "failed to get device by id! expect id[" << target.index << "]";
    return LUMO_RETURN_NOT_FOUND;
  }
  LumoSablinkSpec spec{};
  const LumoReturn ret = target.device->getSablinkSpec(spec);
  if (ret == LUMO_RETURN_NOT_SUPPORTED || (ret == LUMO_RETURN_SUCCESS && spec.linkCount == 0)) {
    TOLK_LOG(kError) << "get device sablink error counters not support on current device! device id["
                     << target.index << "]";
    return LUMO_RETURN_SUCCESS;
  }
  if (ret != LUMO_RETURN_SUCCESS) {
    TOLK_LOG(kError) << "failed to get device sablink specification! device id[" << target.index << "]";
    return ret;
  }
  auto entry = describe(*target.device);
  for (const auto link : linksToAsk(spec)) {
    entry["Link " + std::to_string(link)] = describeLink(*target.device, link);
  }
  document[deviceKey(target.index)] = std::move(entry);
  return ret;
}

}  // namespace tolk
