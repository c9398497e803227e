#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints one line for each GPU, values separated by commas, below a line of column names. The names are
/// printed once in a process, so that a command that loops makes one table.
class QueryGpuOutput : public CommandOutputBase {
 public:
  /// @param document an array with an object for each GPU, whose members are texts
  QueryGpuOutput(nlohmann::ordered_json document, std::vector<std::string> fieldNames, bool withHeader);

  std::shared_ptr<Step> work() override;

  /// The line of column names.
  static std::string headerText(const std::vector<std::string>& fieldNames);

 private:
  /// Appends the line of column names if it is wanted and has not been printed.
  void dealHeader(std::string& text) const;

  const nlohmann::ordered_json gpus_;
  const std::vector<std::string> fieldNames_;
  const bool hasHeader_;
};

}  // namespace tolk
