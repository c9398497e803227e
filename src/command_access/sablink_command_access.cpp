#include "command_access/sablink_command_access.h"

#include <cstdlib>
#include <numeric>
#include <utility>

#include "command_access/lumo_access/lumo_access_factory.h"
#include "command_access/value_text.h"
#include "command_error.h"
#include "command_output/sablink_output.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;
using TextQuery = LumoReturn (LumoAccessDevice::*)(std::string& text) const;

std::string textOf(const LumoAccessDevice& device, TextQuery query) {
  std::string text;
  return (device.*query)(text) == LUMO_RETURN_SUCCESS ? text : kNoValue;
}

}  // namespace

std::shared_ptr<Step> SablinkCommandAccess::startWithDevices(std::uint32_t& count) {
  if (auto failure = startLibrary()) return failure;
  return countDevices(StartWording{}, count);
}

std::shared_ptr<Step> SablinkCommandAccess::findTarget(Target& target) const {
  const std::int64_t asked = std::strtol(options.at("-i").front().c_str(), nullptr, 10);
  target = {.index = static_cast<std::uint32_t>(asked), .device = deviceAt(asked)};
  return target.device ? nullptr : noSuchDevice(asked);
}

std::shared_ptr<Step> SablinkCommandAccess::listTargets(std::uint32_t count, Targets& targets) const {
  std::vector<std::uint32_t> indices;
  if (auto failure = orderDevices(StartWording{}, count, indices)) return failure;
  for (const auto index : indices) {
    targets.push_back({.index = index, .device = accessFactory->getAccessDeviceById(index)});
  }
  return nullptr;
}

std::shared_ptr<Step> SablinkCommandAccess::reportLinks(LinkQuery query) {
  std::uint32_t count = 0;
  if (auto failure = startWithDevices(count)) return failure;
  Targets targets(hasOption("-i") ? 1 : 0);
  if (auto failure = targets.empty() ? listTargets(count, targets) : findTarget(targets.front())) {
    return failure;
  }

  auto document = Json::object();
  for (const auto& target : targets) {
    LumoSablinkSpec spec{};
    if (!target.device || target.device->getSablinkSpec(spec) != LUMO_RETURN_SUCCESS) {
      return commandError(kNotAvailable, ExitCode::kUnsupported);
    }
    auto entry = describe(*target.device);
    for (const auto link : linksToAsk(spec)) {
      entry["LINK " + std::to_string(link)] = query(*target.device, link);
    }
    document[deviceKey(target.index)] = std::move(entry);
  }
  return std::make_shared<SablinkOutput>(std::move(document));
}

std::vector<std::uint32_t> SablinkCommandAccess::linksToAsk(const LumoSablinkSpec& spec) const {
  if (hasOption("-l")) return {linkAsked()};
  std::vector<std::uint32_t> links(spec.linkCount);
  std::iota(links.begin(), links.end(), 0u);
  return links;
}

Json SablinkCommandAccess::describe(const LumoAccessDevice& device) {
  auto entry = Json::object();
  entry["Brand Name"] = textOf(device, &LumoAccessDevice::devGetName);
  entry["UUID"] = textOf(device, &LumoAccessDevice::devGetUUID);
  return entry;
}

}  // namespace tolk
