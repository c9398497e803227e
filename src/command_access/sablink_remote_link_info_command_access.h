#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -r`: prints the device at the other end of one link.
class SablinkRemoteLinkInfoCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
