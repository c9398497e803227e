#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace lumo {

/// Fills a text field of a record, cut to the field, the rest cleared.
template <std::size_t size>
void setText(char (&field)[size], std::string_view text) {
  std::memset(field, 0, size);
  std::memcpy(field, text.data(), std::min(text.size(), size - 1));
}

}  // namespace lumo
