#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

struct MetricsMonitorField;

/// The command `-mm`: a line of figures for each device, made to be repeated at a short interval. It asks
/// a device for nothing but the selected fields. A figure that cannot be had reads "N/A"; only a device
/// that cannot be reached at all ends the command.
class MetricsMonitorCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  /// The devices of "-i" in that order, or all. Null, or the step that reports the failure.
  std::shared_ptr<Step> selectDevices(std::uint32_t count, std::vector<std::uint32_t>& indices) const;

  /// Fills the device's member.
  LumoReturn metricsMonitor(std::uint32_t index, nlohmann::ordered_json& document) const;

  /// One pass over the selected fields.
  nlohmann::ordered_json queryFields(std::uint32_t index, const LumoAccessDevice& device) const;

  std::vector<const MetricsMonitorField*> selected_;  ///< in the order asked for, repeats included
};

}  // namespace tolk
