#pragma once

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the usage text of the `event` sub-command.
class EventHelpOutput : public CommandOutputBase {
 public:
  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
