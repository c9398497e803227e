#pragma once

#include "command_access/command_access_base.h"

namespace tolk {

/// The command `-v`. It needs no library, so it works without a driver.
class VersionCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
