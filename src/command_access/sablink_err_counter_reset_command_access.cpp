#include "command_access/sablink_err_counter_reset_command_access.h"

#include <utility>

#include "command_error.h"
#include "command_output/sablink_err_reset.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> SablinkErrCounterResetCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  std::uint32_t count = 0;
  if (auto failure = startWithDevices(count)) return failure;
  if (!hasOption("-i")) return commandError(kNoDeviceAsked, ExitCode::kBadArgument);
  Target target;
  if (auto failure = findTarget(target)) return failure;
  DeviceType type{};
  if (target.device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS || type != DeviceType::kPhysical) {
    return commandError("Error: reset sablink error counters is only supported for physical device",
                        ExitCode::kUnsupported);
  }
  LumoSablinkSpec spec{};
  if (target.device->getSablinkSpec(spec) != LUMO_RETURN_SUCCESS) {
    return commandError("Error: failed to reset sablink error counters on target device",
                        ExitCode::kUnsupported);
  }

  auto entry = describe(*target.device);
  auto& results = entry["reset result"] = nlohmann::ordered_json::array();
  for (const auto link : linksToAsk(spec)) {
    results.push_back(target.device->resetSablinkErrCounters(link) == LUMO_RETURN_SUCCESS);
  }
  auto document = nlohmann::ordered_json::object();
  document[deviceKey(target.index)] = std::move(entry);
  return std::make_shared<SablinkErrReset>(std::move(document), hasOption("-l") ? linkAsked() : 0);
}

}  // namespace tolk
