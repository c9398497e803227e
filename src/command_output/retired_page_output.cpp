#include "command_output/retired_page_output.h"

#include <utility>

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kCauses[] = {"Single Bit ECC", "Double Bit ECC"};

void appendKey(std::string& out, const std::string& key, const Json&) {
  out += key;
}

void appendValue(std::string& out, const std::string& key, const Json& value) {
  if (key == "retired_pages.cause" && value.is_number()) {
    const auto cause = value.get<std::uint64_t>();
    out += cause < std::size(kCauses) ? kCauses[cause] : "N/A";
  } else {
    out += value.get_ref<const std::string&>();
  }
}

template <class AppendCell>
void appendLine(std::string& out, const Json& page, AppendCell appendCell) {
  const char* separator = "";
  for (const auto& [key, value] : page.items()) {
    out += separator;
    appendCell(out, key, value);
    separator = ", ";
  }
  out += '\n';
}

}  // namespace

RetiredPageOutput::RetiredPageOutput(Json document) : document_(std::move(document)) {}

std::shared_ptr<Step> RetiredPageOutput::work() {
  std::string out;
  for (const auto& page : document_) {
    if (out.empty()) appendLine(out, page, appendKey);
    appendLine(out, page, appendValue);
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
