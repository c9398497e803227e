#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -s`: which links carry traffic. A state that cannot be read leaves a gap in its line
/// alone.
class SablinkStatusCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;

 private:
  static nlohmann::ordered_json querySablinkStatusInfo(const LumoAccessDevice& device, std::uint32_t link);
};

}  // namespace tolk
