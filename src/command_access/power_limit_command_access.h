#pragma once

#include "command_access/device_change_command_access.h"

namespace tolk {

/// The command `-pl`: limits the power that GPUs draw, until the next boot or, with "-o 1", beyond it.
class PowerLimitCommandAccess : public DeviceChangeCommandAccess {
 public:
  using DeviceChangeCommandAccess::DeviceChangeCommandAccess;

  std::shared_ptr<Step> work() override;

  /// Sets one device after the other; one that does not take the limit ends it.
  /// @param limit watts
  static std::shared_ptr<Step> runSet(const Targets& targets, double limit, bool persistent);
};

}  // namespace tolk
