#pragma once

#include "command_access/vgpu_devices_command_access.h"

namespace tolk {

/// The command `vgpu -s`: the types of vGPU that each GPU offers.
class VgpuSupportCommandAccess : public VgpuDevicesCommandAccess {
 public:
  using VgpuDevicesCommandAccess::VgpuDevicesCommandAccess;

 protected:
  LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                             Json& document) const override;
  std::shared_ptr<Step> makeOutput(Json document) const override;
};

}  // namespace tolk
