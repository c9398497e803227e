#include "command_output/vgpu_utilization_output.h"

#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

constexpr std::array kTable{Column{"# gpu", 8}, Column{"vgpu", 10}, Column{"gpu", 8}, Column{"mem", 8}};
constexpr std::array<std::string_view, kTable.size()> kUnits{"# Id", "Id", "%", "%"};
constexpr std::size_t kRuleWidth = 32;

}  // namespace

VgpuUtilizationOutput::VgpuUtilizationOutput(nlohmann::ordered_json document)
    : document_(std::move(document)) {}

std::shared_ptr<Step> VgpuUtilizationOutput::work() {
  std::string out;
  appendHead(out, kTable);
  appendCells(out, kTable, kUnits);
  out.append("+").append(kRuleWidth, '-').append("+\n");
  for (const auto& row : document_) {
    const auto cell = [&row](const char* key) -> std::string_view {
      return row.at(key).get_ref<const std::string&>();
    };
    const std::string index = "  " + std::string(cell("Gpu Idx"));
    appendCells(out, kTable, {index, cell("Vgpu Id"), cell("Gpu Utilization"), cell("Mem Utilization")});
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
