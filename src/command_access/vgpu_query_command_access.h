#pragma once

#include "command_access/vgpu_devices_command_access.h"

namespace tolk {

/// The command `vgpu -q`: a report on each vGPU, as its guest sees it.
class VgpuQueryCommandAccess : public VgpuDevicesCommandAccess {
 public:
  using VgpuDevicesCommandAccess::VgpuDevicesCommandAccess;

 protected:
  LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                             Json& document) const override;
  std::shared_ptr<Step> makeOutput(Json document) const override;

 private:
  static void logIdentity(const LumoAccessVirtualDevice& vgpu);
  static void queryVgpuInfo(const LumoAccessVirtualDevice& vgpu, Json& rows);
  static void queryMemoryUsage(const LumoAccessVirtualDevice& vgpu, Json& rows);
  static void queryUtilization(const LumoAccessVirtualDevice& vgpu, Json& rows);
  static void queryEncoderStats(const LumoAccessVirtualDevice& vgpu, Json& rows);
  static void queryDecoderStats(const LumoAccessVirtualDevice& vgpu, Json& rows);
  static void queryVgpuOverCommitInfo(const LumoAccessVirtualDevice& vgpu, Json& rows);
};

}  // namespace tolk
