#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_virtual_device.h"

namespace tolk {

/// Base of the forms of `vgpu`: walks over the physical GPUs, or the one that "-i" names, and lets each form
/// say what it reads of one and who prints it. A value that cannot be had reads "N/A". A GPU of which the
/// vGPUs cannot be listed ends the command, as does an index of "-i" that is no physical GPU; then nothing at
/// all is printed.
class VgpuDevicesCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 protected:
  using Json = nlohmann::ordered_json;
  using Visit = std::function<LumoReturn(const LumoAccessVirtualDevice& vgpu)>;

  /// Adds what the form reads of a GPU. Any status but 0 ends the command.
  virtual LumoReturn queryDeviceInfo(std::uint32_t index, const LumoAccessDevice& device,
                                     Json& document) const = 0;

  virtual std::shared_ptr<Step> makeOutput(Json document) const = 0;

  /// Visits the vGPUs of a GPU, and ends with the first status that is not 0.
  static LumoReturn visitVirtualDevices(const LumoAccessDevice& device, const Visit& visit);

  /// The same for a report: each vGPU has a member in that of its GPU, which is there without any too.
  /// @param fill adds the rows of a vGPU to its member
  static LumoReturn getAllVirtualDevice(
      std::uint32_t index, const LumoAccessDevice& device, Json& document,
      const std::function<void(const LumoAccessVirtualDevice& vgpu, Json& rows)>& fill);

  /// Number of a vGPU among those of all GPUs.
  static unsigned long long uniqueIdentifier(std::uint32_t index, std::uint32_t vgpuId);

 private:
  /// The physical GPUs of those that were asked for.
  LumoReturn queryDevices(const std::vector<std::uint32_t>& indices, Json& document) const;
};

}  // namespace tolk
