#include "command_output/query_gpu_output.h"

#include <string_view>
#include <utility>

#include "query_gpu_fields.h"

namespace tolk {

namespace {

constexpr std::string_view kSeparator = ", ";

}  // namespace

QueryGpuOutput::QueryGpuOutput(nlohmann::ordered_json document, std::vector<std::string> fieldNames,
                               bool withHeader)
    : gpus_(std::move(document)), fieldNames_(std::move(fieldNames)), hasHeader_(withHeader) {}

std::shared_ptr<Step> QueryGpuOutput::work() {
  std::string text;
  dealHeader(text);
  for (const auto& gpu : gpus_) {
    std::string_view separator;
    for (const auto& value : gpu) {
      text.append(separator).append(value.get_ref<const std::string&>());
      separator = kSeparator;
    }
    text += '\n';
  }
  std::cout << text << std::flush;
  return nullptr;
}

std::string QueryGpuOutput::headerText(const std::vector<std::string>& fieldNames) {
  std::string text;
  std::string_view separator;
  for (const auto& name : fieldNames) {
    text.append(separator).append(name).append(queryGpuUnit(name));
    separator = kSeparator;
  }
  return text += '\n';
}

void QueryGpuOutput::dealHeader(std::string& text) const {
  // Outputs run on one thread.
  static bool isFirstTime = true;
  if (hasHeader_ && std::exchange(isFirstTime, false)) text += headerText(fieldNames_);
}

}  // namespace tolk
