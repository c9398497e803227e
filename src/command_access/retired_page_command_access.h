#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "command_access/command_access_base.h"
#include "command_access/lumo_access/lumo_access_device.h"

namespace tolk {

struct RetiredPageField;

/// The command `-qrp`: the pages of memory that the GPUs have retired, with the fields that the user
/// names. A device that cannot tell its pages ends it, since one left out would be taken for one without.
class RetiredPageCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  using Fields = std::vector<const RetiredPageField*>;

  /// Appends an object for each page of the device; a device without pages has one too.
  static LumoReturn queryRetiredPage(const LumoAccessDevice& device, const Fields& fields,
                                     nlohmann::ordered_json& document);
};

}  // namespace tolk
