#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the names of the fields and a line for each page, separated by commas.
class RetiredPageOutput : public CommandOutputBase {
 public:
  /// @param document an array of objects with the same keys; a cause is its number
  explicit RetiredPageOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
