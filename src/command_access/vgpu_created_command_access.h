#pragma once

#include "command_access/vgpu_devices_command_access.h"

namespace tolk {

/// The command `vgpu -c`: the vGPUs that were made on each GPU, and of which type.
class VgpuCreatedCommandAccess : public VgpuDevicesCommandAccess {
 public:
  using VgpuDevicesCommandAccess::VgpuDevicesCommandAccess;

 protected:
  LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                             Json& document) const override;
  std::shared_ptr<Step> makeOutput(Json document) const override;

 private:
  static void queryStaticInfo(const LumoAccessVirtualDevice& vgpu, Json& rows);
};

}  // namespace tolk
