#include "command_output/sablink_layout.h"

#include <array>
#include <string>
#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array kTable{Column{"local device", 18}, Column{"remote device", 22},
                            Column{"link ports(local,remote)", 0}};

std::string numberText(const Json& number) {
  return std::to_string(number.get<std::uint32_t>());
}

std::string portsText(const Json& ports) {
  std::string text;
  for (const auto& pair : ports) {
    if (!text.empty()) text += ',';
    text += '(' + numberText(pair.at(0)) + ',' + numberText(pair.at(1)) + ')';
  }
  return text;
}

}  // namespace

SablinkLayout::SablinkLayout(Json document) : document_(std::move(document)) {}

std::shared_ptr<Step> SablinkLayout::work() {
  std::string out;
  for (const auto& path : document_.at("Layout")) {
    out += "nearest path\n";
    appendHead(out, kTable);
    for (const auto& hop : path) {
      appendCells(out, kTable,
                  {numberText(hop.at("local device")), numberText(hop.at("remote device")),
                   portsText(hop.at("link ports"))});
    }
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
