#pragma once

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the properties that the selective query knows.
class QueryGpuHelpOutput : public CommandOutputBase {
 public:
  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
