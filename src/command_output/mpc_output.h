#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the tables of a divided GPU: how it can be divided, or its instances.
class MpcOutput : public CommandOutputBase {
 public:
  /// @param document "profiles" with "configurations", or "instance"
  explicit MpcOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
