#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a report on devices, as indented text or as JSON, on standard output or at the end of a file.
/// What a file holds already stays.
class QueryOutput : public CommandOutputBase {
 public:
  /// @param filename empty for standard output
  QueryOutput(nlohmann::ordered_json document, bool json, std::string filename);

  /// Null, or the failure of the file.
  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
  const bool json_;
  const std::string filename_;
};

}  // namespace tolk
