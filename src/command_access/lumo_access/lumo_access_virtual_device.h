#pragma once

#include <cstdint>
#include <string>

#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The virtual machine that a vGPU belongs to. What is not known reads "N/A".
struct VmInfo {
  std::string uuid = "N/A";
  std::string name = "N/A";
};

/// One vGPU, seen from the host that carries it. The device's own methods are left to what the library
/// answers for a vGPU, which is little but its sessions; the library knows neither its name nor its index.
class LumoAccessVirtualDevice : public LumoAccessDevice {
 public:
  explicit LumoAccessVirtualDevice(const ActiveVirtDevice& vgpu);
  ~LumoAccessVirtualDevice() override;

  /// The text that the vGPU was found by.
  LumoReturn devGetUUID(std::string& uuid) const override;

  /// Bytes.
  LumoReturn getGuestMemUsed(unsigned long long& usedBytes) const;
  LumoReturn getGuestMemTotal(unsigned long long& totalBytes) const;

  /// Number of the vGPU, unique on its GPU.
  LumoReturn getVgpuId(std::uint32_t& id) const;

  /// Process of the virtual machine, 0 while none uses the vGPU.
  LumoReturn getVmPid(std::uint32_t& pid) const;

  /// Percent.
  LumoReturn getGuestGpuUtilization(std::uint32_t& utilization) const;
  LumoReturn getGuestMemUtilization(std::uint32_t& utilization) const;

  LumoReturn getVgpuOverCommitInfo(LumoVgpuOverCommitInfo& info) const;
  LumoReturn GetVirtType(LumoVirtType& type) const;  // sic

  /// What the command line of the virtual machine says. `info` is written in a failure too, with what
  /// was found.
  LumoReturn getVmInfo(VmInfo& info) const;

 private:
  const std::string uuid_;
};

}  // namespace tolk
