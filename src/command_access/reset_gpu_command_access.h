#pragma once

#include "command_access/device_change_command_access.h"

namespace tolk {

/// The command `-r`: resets GPUs that no process uses. A process that starts behind the check is not seen.
class ResetGpuCommandAccess : public DeviceChangeCommandAccess {
 public:
  using DeviceChangeCommandAccess::DeviceChangeCommandAccess;

  std::shared_ptr<Step> work() override;

  /// Resets one device after the other. A reset that fails ends it, with those behind it as they were.
  std::shared_ptr<Step> runReset(const Targets& targets) const;
};

}  // namespace tolk
