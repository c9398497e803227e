#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "command_output/text_field.h"

namespace tolk {

/// A column of a table without rules: what its head says and its width in characters.
struct Column {
  std::string_view title;
  std::size_t width;
};

/// Appends a line of cells, each padded to its column.
template <std::size_t columns>
void appendCells(std::string& out, const std::array<Column, columns>& table,
                 const std::array<std::string_view, columns>& cells) {
  for (std::size_t i = 0; i < columns; ++i) appendLeft(out, cells[i], table[i].width);
  out += '\n';
}

template <std::size_t columns>
void appendHead(std::string& out, const std::array<Column, columns>& table) {
  for (const auto& column : table) appendLeft(out, column.title, column.width);
  out += '\n';
}

}  // namespace tolk
