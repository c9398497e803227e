#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The command `-h`. It needs no library, so it works without a driver.
class HelpCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
