#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The command `--help-query-gpu`.
class QueryGpuHelpCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
