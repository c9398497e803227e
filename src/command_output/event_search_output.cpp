#include "command_output/event_search_output.h"

#include <string>
#include <utility>

#include "command_output/document_text.h"
#include "command_output/json_text.h"
#include "common_define.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kDevice = "GPU";

/// The devices in a list, each with the two parts of its key: "GPU0 UUID:GPU-...".
Json outPutToJson(const Json& document) {
  auto devices = Json::array();
  for (const auto& [key, events] : document.items()) {
    const auto blank = key.find(' ');
    const auto colon = key.find(':');
    if (!key.starts_with(kDevice) || blank == std::string::npos || colon == std::string::npos) {
      TOLK_LOG(kError) << "event json format error";
      continue;
    }
    Json device = {{"Index", key.substr(kDevice.size(), blank - kDevice.size())},
                   {"UUID", key.substr(colon + 1)}};
    device.update(events);
    devices.push_back(std::move(device));
  }
  return {{"GPU", std::move(devices)}};
}

}  // namespace

EventSearchOutput::EventSearchOutput(Json document, bool json)
    : document_(std::move(document)), json_(json) {}

std::shared_ptr<Step> EventSearchOutput::work() {
  std::string out;
  if (json_) {
    out = jsonText(outPutToJson(document_)) + '\n';
  } else if (document_.empty()) {
    out = "No event information found\n";
  } else {
    appendDocument(out, document_);
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
