#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The command `event -h`.
class EventHelpCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
