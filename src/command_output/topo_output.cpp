#include "command_output/topo_output.h"

#include <utility>

#include "command_output/text_field.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kCellWidth = 9;
constexpr std::size_t kAffinityWidth = 15;
constexpr std::size_t kLegendWidth = 5;
constexpr std::size_t kAdapterWidth = 6;

std::size_t widthOf(std::string_view column) {
  return column == "CPU Affinity" || column == "NUMA Affinity" ? kAffinityWidth : kCellWidth;
}

void appendMatrix(std::string& out, const Json& rows) {
  appendLeft(out, " ", kCellWidth);
  if (!rows.empty()) {
    for (const auto& cell : rows.front().items()) appendLeft(out, cell.key(), widthOf(cell.key()));
  }
  out += '\n';
  for (const auto& [name, row] : rows.items()) {
    appendLeft(out, name, kCellWidth);
    for (const auto& [column, cell] : row.items()) {
      appendLeft(out, cell.get_ref<const std::string&>(), widthOf(column));
    }
    out += '\n';
  }
}

void appendLegend(std::string& out, const Json& legend, std::size_t width, std::string_view separator) {
  for (const auto& [key, text] : legend.items()) {
    appendRight(out, key, width);
    out.append(separator).append(text.get_ref<const std::string&>()) += '\n';
  }
}

}  // namespace

TopoOutput::TopoOutput(Json document) : document_(std::move(document)) {}

std::shared_ptr<Step> TopoOutput::work() {
  std::string out;
  appendMatrix(out, document_.at("topo"));
  out += "\nLegend:\n";
  appendLegend(out, document_.at("Legend"), kLegendWidth, " = ");
  if (const auto adapters = document_.find("NIC Legend"); adapters != document_.end()) {
    out += "\nNIC Legend:\n";
    appendLegend(out, *adapters, kAdapterWidth, ": ");
  }
  std::cout << out << std::endl;
  return nullptr;
}

}  // namespace tolk
