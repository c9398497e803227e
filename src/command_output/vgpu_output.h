#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints what GPUs offer, or the vGPUs that were made on them, as indented text with a paragraph for each
/// GPU, vGPU and type.
class VgpuOutput : public CommandOutputBase {
 public:
  explicit VgpuOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

/// Whether blank space with the uuid of a vGPU behind it stands somewhere in the key.
bool hasVgpuUuid(std::string_view key);

/// Whether blank space with a digit behind it stands somewhere in the key, as in "GPU 0" and in an indented
/// number of a type.
bool hasNumber(std::string_view key);

}  // namespace tolk
