#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a line for each session of a video engine, encoders and decoders alike.
class CodecSessionOutput : public CommandOutputBase {
 public:
  /// @param document one member for each device that has sessions, with one for each session id
  explicit CodecSessionOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json devices_;
};

}  // namespace tolk
