#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints which links had their error counters reset.
class SablinkErrReset : public CommandOutputBase {
 public:
  /// @param document one member for each device: name, uuid and an array of what came of each link
  /// @param firstPort number of the link that the arrays begin with
  SablinkErrReset(nlohmann::ordered_json document, std::uint32_t firstPort);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json devices_;
  const std::uint32_t firstPort_;
};

}  // namespace tolk
