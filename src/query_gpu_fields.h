#pragma once

#include <span>
#include <string_view>

namespace tolk {

/// A property that the selective query can print.
struct QueryGpuField {
  std::string_view name;
  std::string_view description;
};

/// All of them, in the order of the help text.
std::span<const QueryGpuField> queryGpuFields();

}  // namespace tolk
