#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tolk {

/// The document as JSON text without a line end behind it. A driver may deliver any bytes; those that
/// are no UTF-8 become the replacement character, so what is printed can always be parsed.
inline std::string jsonText(const nlohmann::ordered_json& document) {
  return document.dump(4, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace tolk
