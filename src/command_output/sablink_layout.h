#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the shortest ways from one device to another, each as a block with a line per hop.
class SablinkLayout : public CommandOutputBase {
 public:
  /// @param document "Layout" is an array of ways, and a way an array of hops with the indices of both
  /// devices
  ///   and pairs of ports
  explicit SablinkLayout(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
