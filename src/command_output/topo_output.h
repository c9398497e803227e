#pragma once

#include <nlohmann/json.hpp>

#include "command_output/command_output_base.h"

namespace tolk {

/// Prints a matrix of connections and what its cells mean.
class TopoOutput : public CommandOutputBase {
 public:
  /// @param document "topo", an object of rows of cells, "Legend" and, if there are adapters, "NIC Legend";
  ///   the cells and the legends' entries are texts
  explicit TopoOutput(nlohmann::ordered_json document);

  std::shared_ptr<Step> work() override;

 private:
  const nlohmann::ordered_json document_;
};

}  // namespace tolk
