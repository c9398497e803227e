#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// The stored faults of each GPU, as text or as JSON.
class EventSearchOutput : public CommandOutputBase {
 public:
  EventSearchOutput(nlohmann::ordered_json document, bool json);

  std::shared_ptr<Step> work() override;

 private:
  nlohmann::ordered_json document_;
  bool json_;
};

}  // namespace tolk
