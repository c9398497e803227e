#pragma once

#include <nlohmann/json_fwd.hpp>

#include "command_access/command_access_base.h"

namespace tolk {

/// The command `-L`: names the devices and their uuids. A device that cannot be read ends it, since a
/// list with gaps would be taken for the whole.
class ListCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  /// Adds the member of one device. Null, or the step that reports the failure.
  std::shared_ptr<Step> addDevice(std::uint32_t index, nlohmann::ordered_json& devices) const;
};

}  // namespace tolk
