#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -la`: all shortest ways over links from one device to another.
class SablinkLayoutCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
