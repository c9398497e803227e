#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a line for each video session of a guest.
class VgpuSessionsOutput : public CommandOutputBase {
 public:
  /// @param document one member for each vGPU that has sessions, by its uuid, with one for each session id
  explicit VgpuSessionsOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
