#pragma once

#include "command_output/sablink_output.h"

namespace tolk {

/// Prints the error counters of links, or that there are none.
class SablinkErrorCounter : public SablinkOutput {
 public:
  using SablinkOutput::SablinkOutput;

  std::shared_ptr<Step> work() override;
};

}  // namespace tolk
