#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tolk {

class LumoAccessDevice;
class LumoAccessSystem;

/// Where the values of one GPU come from.
struct QueryGpuSource {
  const LumoAccessDevice& device;
  const LumoAccessSystem& system;
  std::uint32_t deviceCount;  ///< of the whole machine
};

/// A property that the selective query can print.
struct QueryGpuField {
  std::string_view name;
  std::string_view description;

  /// The value as text, without its unit; nothing when it cannot be had, which has been logged then. Several
  /// threads call it at once, each for a GPU of its own.
  std::optional<std::string> (*query)(const QueryGpuSource& gpu);
};

/// All of them, in the order of the help text.
std::span<const QueryGpuField> queryGpuFields();

/// Null when there is no such field.
const QueryGpuField* findQueryGpuField(std::string_view name);

/// What stands behind a field's values and its column's name, such as " [MiB]"; mostly nothing. Its name
/// decides.
std::string_view queryGpuUnit(std::string_view fieldName);

}  // namespace tolk
