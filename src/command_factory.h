#pragma once

#include <memory>
#include <utility>

#include "parsed_options.h"
#include "step.h"

namespace tolk {

/// How the commands of one class are made and what happens around it. A command that loops gets a timer
/// that runs it again and again; every other one has its success posted before it runs.
struct CommandFactory {
  using Make = std::shared_ptr<Step> (*)(ParsedOptions options);

  Make make = nullptr;      ///< null for a command that this version refuses
  unsigned loopUnitMs = 0;  ///< what 1 in the value of "-l" stands for; 0 for a command that cannot loop
  bool splitsIds = false;   ///< the value of "-i" becomes a list, split at commas

  /// Posts the events and returns the command. An interval that no long can hold throws.
  std::shared_ptr<Step> operator()(ParsedOptions options) const;
};

/// The `make` of a command class.
template <class Command>
std::shared_ptr<Step> getFn(ParsedOptions options) {
  return std::make_shared<Command>(std::move(options));
}

}  // namespace tolk
