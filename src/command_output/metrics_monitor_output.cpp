#include "command_output/metrics_monitor_output.h"

#include <utility>

namespace tolk {

namespace {

template <class TextOf>
void appendLine(std::string& out, const std::vector<std::string>& fields, TextOf textOf) {
  const char* separator = "";
  for (const auto& field : fields) {
    out.append(separator).append(textOf(field));
    separator = ", ";
  }
  out += '\n';
}

}  // namespace

bool MetricsMonitorOutput::headPrinted_ = false;

MetricsMonitorOutput::MetricsMonitorOutput(nlohmann::ordered_json document, std::vector<std::string> fields)
    : document_(std::move(document)), fields_(std::move(fields)) {}

std::shared_ptr<Step> MetricsMonitorOutput::work() {
  std::string out;
  if (document_.empty()) {
    out = "no metrics monitor\n";
  } else if (!std::exchange(headPrinted_, true)) {
    appendLine(out, fields_, [](const std::string& field) { return field; });
  }
  for (const auto& device : document_) {
    appendLine(out, fields_, [&device](const std::string& field) -> const std::string& {
      return device.at(field).get_ref<const std::string&>();
    });
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
