#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a line for each process under a head, which every repeat of a loop has again.
class ProcessMonitorOutput : public CommandOutputBase {
 public:
  /// @param document "Process" with one member for each device that has processes, with one for each
  explicit ProcessMonitorOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
