#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints one line for each device, and indents the MPC instances, which follow their parent.
class ListOutput : public CommandOutputBase {
 public:
  /// @param document one member for each device, keyed by its index
  ListOutput(nlohmann::ordered_json document, bool withoutInstances);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json devices_;
  const bool hideInstances_;
};

}  // namespace tolk
