#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The sub-command `event`: hands over to the command of the form that was asked for. It leaves the log
/// alone, which the command behind it turns on.
class EventCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
