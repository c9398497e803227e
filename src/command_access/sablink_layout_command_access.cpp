#include "command_access/sablink_layout_command_access.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "command_error.h"
#include "command_output/sablink_layout.h"
#include "common_define.h"
#include "rusk/text.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

Json describeHop(const SablinkHop& hop) {
  auto ports = Json::array();
  for (const auto& layout : hop.ports) ports.push_back(Json::array({layout.localPort, layout.remotePort}));
  return {
      {"local device", hop.localIndex}, {"remote device", hop.remoteIndex}, {"link ports", std::move(ports)}};
}

}  // namespace

std::shared_ptr<Step> SablinkLayoutCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  std::uint32_t count = 0;
  if (auto failure = startWithDevices(count)) return failure;
  std::vector<std::string> asked;
  if (hasOption("-i")) asked = rusk::split(options.at("-i").front(), ',');
  if (asked.size() != 2) {
    return commandError("Error: please specify local device and remote device by option -i or --id.",
                        ExitCode::kBadArgument);
  }
  // Texts, since numbers that are too large for any device would all be the same.
  if (asked.front() == asked.back()) {
    return commandError("Error: please specify two different devices", ExitCode::kBadArgument);
  }
  std::array<std::shared_ptr<LumoAccessDevice>, 2> ends;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    const std::int64_t index = std::strtol(asked[i].c_str(), nullptr, 10);
    ends[i] = deviceAt(index);
    if (!ends[i]) return noSuchDevice(index);
  }

  std::vector<SablinkPath> paths;
  if (ends.front()->getSablinkLayout(*ends.back(), paths) != LUMO_RETURN_SUCCESS) {
    return commandError(kNotAvailable, ExitCode::kUnsupported);
  }
  if (paths.empty()) {
    return commandError("Info: there is no connection between the specified two devices",
                        ExitCode::kQueryFailed);
  }
  Json document = {{"Layout", Json::array()}};
  for (const auto& path : paths) {
    auto hops = Json::array();
    for (const auto& hop : path) hops.push_back(describeHop(hop));
    document["Layout"].push_back(std::move(hops));
  }
  return std::make_shared<SablinkLayout>(std::move(document));
}

}  // namespace tolk
