#pragma once

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the tool's version.
class VersionOutput : public CommandOutputBase {
 public:
  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
