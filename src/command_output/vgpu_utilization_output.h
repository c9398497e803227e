#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a line for each vGPU below a head that is always there.
class VgpuUtilizationOutput : public CommandOutputBase {
 public:
  /// @param document rows with "Gpu Idx", "Vgpu Id", "Gpu Utilization" and "Mem Utilization", in their order
  explicit VgpuUtilizationOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
