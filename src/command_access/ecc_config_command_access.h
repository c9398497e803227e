#pragma once

#include "command_access/device_change_command_access.h"

namespace tolk {

/// The command `-e`: sets the ECC mode that the next reset of a device brings. A device that refuses is
/// told in its line and does not stop the others.
class EccConfigCommandAccess : public DeviceChangeCommandAccess {
 public:
  using DeviceChangeCommandAccess::DeviceChangeCommandAccess;

  std::shared_ptr<Step> work() override;

 private:
  /// The device of "-i", or all.
  std::shared_ptr<Step> selectTargets(Targets& targets) const;

  static void enableEccModeForTargetDevice(LumoAccessDevice& device);
  static void disableEccModeForTargetDevice(LumoAccessDevice& device);

  using SetMode = LumoReturn (LumoAccessDevice::*)();
  static void setEccMode(LumoAccessDevice& device, SetMode setMode, const char* verb);
};

}  // namespace tolk
