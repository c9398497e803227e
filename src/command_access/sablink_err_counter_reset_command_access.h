#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -re`: sets the error counters of a GPU's links to zero. A link that refuses is told
/// in its line, and the others are reset all the same.
class SablinkErrCounterResetCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
