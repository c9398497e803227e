#pragma once

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the usage text; in a guest the short one, which names the commands that work there.
class HelpOutput : public CommandOutputBase {
 public:
  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
