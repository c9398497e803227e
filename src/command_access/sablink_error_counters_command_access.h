#pragma once

#include "command_access/sablink_command_access.h"

namespace tolk {

/// The command `sablink -e`: what went wrong on the links. A device without links is left out, and a counter
/// that cannot be read leaves a gap in its line alone.
class SablinkErrorCountersCommandAccess : public SablinkCommandAccess {
 public:
  using SablinkCommandAccess::SablinkCommandAccess;

  std::shared_ptr<Step> work() override;

 private:
  /// The devices of "-i" in the order asked, or all. Null, or the step that reports the failure.
  std::shared_ptr<Step> selectDevices(std::uint32_t count, Targets& targets) const;

  LumoReturn querySablinkErrorCounters(const Target& target, nlohmann::ordered_json& document) const;
};

}  // namespace tolk
