#include "command_output/query_output.h"

#include <fstream>
#include <utility>

#include "command_error.h"
#include "command_output/document_text.h"
#include "command_output/json_text.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

/// "0" of "GPU0 00000000:01:00.0".
std::string indexOf(const std::string& deviceKey) {
  const auto begin = deviceKey.find_first_of("0123456789");
  return deviceKey.substr(begin, deviceKey.find(' ') - begin);
}

/// The report with its devices in a list, for whoever wants them one by one and not by name.
Json withDeviceList(const Json& document) {
  auto listed = Json::object();
  for (const auto& [key, value] : document.items()) {
    if (!isDeviceKey(key)) {
      listed[key] = value;
      continue;
    }
    Json device = {{"Index", indexOf(key)}};
    device.update(value);
    listed["GPU"].push_back(std::move(device));
  }
  return listed;
}

}  // namespace

QueryOutput::QueryOutput(Json document, bool json, std::string filename)
    : document_(std::move(document)), json_(json), filename_(std::move(filename)) {}

std::shared_ptr<Step> QueryOutput::work() {
  std::string out;
  if (json_) {
    out = jsonText(withDeviceList(document_));
  } else {
    appendDocument(out, document_, isDeviceKey);
  }
  out += '\n';
  if (filename_.empty()) {
    std::cout << out << std::flush;
    return nullptr;
  }
  std::ofstream file(filename_, std::ios::app);
  if (!file) return commandError("Error: file was opened and created failed", ExitCode::kFileFailed);
  // A full disk shows when the last byte is written and no earlier.
  if (!(file << out << std::flush)) {
    return commandError("Error: failed to write to the file", ExitCode::kFileFailed);
  }
  return nullptr;
}

}  // namespace tolk
