#include "command_output/mpc_output.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "command_output/text_table.h"

namespace tolk {

namespace {

using Json = nlohmann::ordered_json;

template <std::size_t columns>
using Keys = std::array<const char*, columns>;

constexpr std::array kProfiles{Column{"Profile Name", 15}, Column{"ProfileID", 10}, Column{"CoreCount", 10},
                               Column{"Memory", 7}};
constexpr Keys<4> kProfileKeys{"Name", "ProfileId", "CoreCount", "Memory"};

constexpr std::array kConfigurations{Column{"ConfigID", 10}, Column{"ConfigName", 15},
                                     Column{"Profile Combination", 25}, Column{"Profile Names", 32}};
constexpr Keys<4> kConfigurationKeys{"ConfigId", "ConfigName", "Profile Combination", "Profile Names"};

constexpr std::array kInstances{Column{"ID", 5}, Column{"Profile Name", 15}, Column{"ProfileID", 10},
                                Column{"Parent ID", 10}, Column{"InstanceID", 12}};
constexpr const char* kRowNumber = nullptr;  ///< the cell is the key of the row itself
constexpr Keys<5> kInstanceKeys{kRowNumber, "Name", "ProfileID", "ParentIndex", "InstanceId"};

/// Head and rows between rules as wide as all columns.
template <std::size_t columns>
void appendRuledTable(std::string& out, const std::array<Column, columns>& table, const Keys<columns>& keys,
                      const Json& rows) {
  std::size_t width = 0;
  for (const auto& column : table) width += column.width;
  const auto rule = std::string(width, '-') + '\n';

  out += rule;
  appendHead(out, table);
  out += rule;
  for (const auto& [number, row] : rows.items()) {
    std::array<std::string_view, columns> cells;
    for (std::size_t i = 0; i < columns; ++i) {
      cells[i] = keys[i] == kRowNumber ? number : row.at(keys[i]).template get_ref<const std::string&>();
    }
    appendCells(out, table, cells);
  }
  out += rule;
}

}  // namespace

MpcOutput::MpcOutput(Json document) : document_(std::move(document)) {}

std::shared_ptr<Step> MpcOutput::work() {
  std::string out;
  if (const auto instances = document_.find("instance"); instances != document_.end()) {
    appendRuledTable(out, kInstances, kInstanceKeys, *instances);
  } else {
    for (const auto& rows : document_.at("profiles")) {
      out += "Supported profiles:\n";
      appendRuledTable(out, kProfiles, kProfileKeys, rows);
    }
    for (const auto& rows : document_.at("configurations")) {
      out += "Supported configurations:\n";
      appendRuledTable(out, kConfigurations, kConfigurationKeys, rows);
    }
  }
  std::cout << out << std::flush;
  return nullptr;
}

}  // namespace tolk
