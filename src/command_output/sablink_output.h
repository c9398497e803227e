#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints devices, each with lines of what is known of its links.
class SablinkOutput : public CommandOutputBase {
 public:
  /// @param document one member for each device, by "GPU " and its index: name, uuid and one member for each
  ///   link, which is a text or an object of texts by name
  explicit SablinkOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 protected:
  const nlohmann::ordered_json devices_;
};

/// Appends the line that a device begins with.
void appendSablinkDevice(std::string& out, const std::string& key, const nlohmann::ordered_json& device);

}  // namespace tolk
