#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The sub-command `vgpu`: hands over to the command of the one form that was asked for. It leaves the log
/// alone, which the command behind it turns on.
class VgpuCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
