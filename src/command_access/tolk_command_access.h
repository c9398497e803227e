#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The command without a name: a row of figures for each device and the processes on it. A figure that
/// cannot be had reads "N/A"; only a device that cannot be reached at all ends the command.
class TolkCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  /// The device of "-i", or all in display order. Null, or the step that reports the failure.
  std::shared_ptr<Step> selectDevices(std::vector<std::uint32_t>& indices) const;

  /// Fills the device's member of "Device".
  LumoReturn queryDeviceInfo(std::uint32_t index, nlohmann::ordered_json& document) const;

  /// Fills the device's member of "Process", and sets `repeat_` when the performance state changed
  /// meanwhile.
  LumoReturn queryMemoryInfo(std::uint32_t index, nlohmann::ordered_json& document);

  bool repeat_ = false;
  bool processesQueried_ = true;  ///< every process query of this run succeeded
};

}  // namespace tolk
