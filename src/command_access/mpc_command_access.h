#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

/// The command `mpc`: divides a GPU into instances and tells how it can be divided and is. What a failure
/// leaves behind is what the driver left; nothing is undone.
class MpcCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  /// What "-i" names, and what one of the options does with it.
  struct Target {
    std::uint32_t index = 0;
    std::shared_ptr<LumoAccessDevice> device;
  };
  using Run = std::shared_ptr<Step> (MpcCommandAccess::*)(const Target& target) const;
  struct Form {
    const char* option;
    Run run;
  };
  static const Form kForms[];

  std::shared_ptr<Step> findTarget(Target& target) const;

  std::shared_ptr<Step> enableMpcModeForTargetDevice(const Target& target) const;
  std::shared_ptr<Step> disableMpcModeForTargetDevice(const Target& target) const;
  std::shared_ptr<Step> configureMpc(const Target& target) const;
  std::shared_ptr<Step> reportConfigurations(const Target& target) const;
  std::shared_ptr<Step> reportInstances(const Target& target) const;

  /// "profiles" and "configurations", each by device index.
  static LumoReturn listMpcConfiguration(const Target& target, nlohmann::ordered_json& document);

  /// "instance", by a running number.
  static LumoReturn listMpcInstance(const Target& target, nlohmann::ordered_json& document);
};

}  // namespace tolk
