#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a line of values for each device, with the names of the fields above the first one of the
/// process: what a loop prints is one table.
class MetricsMonitorOutput : public CommandOutputBase {
 public:
  /// @param document one member for each device, with a text for each of the fields
  MetricsMonitorOutput(nlohmann::ordered_json document, std::vector<std::string> fields);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
  const std::vector<std::string> fields_;

  static bool headPrinted_;  ///< used by the worker thread alone
};

}  // namespace tolk
