#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints the report on vGPUs as indented text with a paragraph for each GPU and vGPU.
class VgpuQueryOutput : public CommandOutputBase {
 public:
  explicit VgpuQueryOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
