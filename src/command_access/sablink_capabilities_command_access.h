#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -c`: what the links can do. A capability that cannot be read leaves a gap in its line
/// alone.
class SablinkCapabilitiesCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;

 private:
  static nlohmann::ordered_json querySablinkCapInfo(const LumoAccessDevice& device, std::uint32_t link);
};

}  // namespace tolk
