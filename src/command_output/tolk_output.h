#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Draws the summary: a table of the devices and, where processes can be told, one of the processes.
class TolkOutput : public CommandOutputBase {
 public:
  /// @param processesQueried whether the list of processes is complete
  /// @param concise leaves out MPC instances and processes
  TolkOutput(nlohmann::ordered_json document, bool processesQueried, bool concise);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
  const bool processesQueried_;
  const bool concise_;
};

}  // namespace tolk
