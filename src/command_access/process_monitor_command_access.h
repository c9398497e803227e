#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The command `-pm`: what each process takes of the GPUs. A device whose memory or processes cannot be
/// read ends it; shares of the GPU that cannot be read show as "N/A".
class ProcessMonitorCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  /// Fills the device's member of "Process". An MPC parent has none: its processes are its instances'.
  LumoReturn queryProcessInfo(std::uint32_t index, nlohmann::ordered_json& document) const;
};

}  // namespace tolk
