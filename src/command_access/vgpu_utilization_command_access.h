#pragma once

#include "command_access/vgpu_devices_command_access.h"

namespace tolk {

/// The command `vgpu -u`: how busy GPU and memory of each vGPU are.
class VgpuUtilizationCommandAccess : public VgpuDevicesCommandAccess {
 public:
  using VgpuDevicesCommandAccess::VgpuDevicesCommandAccess;

 protected:
  LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                             Json& document) const override;
  std::shared_ptr<Step> makeOutput(Json document) const override;

 private:
  /// Adds the row of a vGPU.
  static void getGuestUitilizaiton(std::uint32_t index, const LumoAccessVirtualDevice& vgpu,
                                   Json& rows);  // sic
};

}  // namespace tolk
