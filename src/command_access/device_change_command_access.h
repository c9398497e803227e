#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// Base of the commands that change devices. They print a line for each device as soon as it is done, since
/// what has been changed stays so whatever becomes of the next one, and have no output behind them.
class DeviceChangeCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  /// A device with its position in the library's order.
  struct Target {
    std::uint32_t index = 0;
    std::shared_ptr<LumoAccessDevice> device;
  };
  using Targets = std::vector<Target>;

 protected:
  /// Refuses a host with mediated devices, whose guests would not know of the change.
  static std::shared_ptr<Step> refuseMdevBus();

  std::shared_ptr<Step> countTargets(std::uint32_t& count) const;

  /// The devices of "-i" in the order given, one that is named twice twice, or all. Nothing is changed
  /// when one of them is missing.
  std::shared_ptr<Step> getTargetDevices(Targets& targets) const;

  /// The refusal of the option's value, which for these commands depends on what the host has.
  static std::shared_ptr<Step> illegalValue(const char* option);
};

}  // namespace tolk
