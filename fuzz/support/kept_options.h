#pragma once

#include <memory>
#include <utility>

#include "command_factory.h"
#include "command_parser.h"

// Read in front of the table of commands, so that what the parser makes of a row keeps what it was given, and
// no command has to be linked.

namespace tolk_fuzz {

class KeptOptions final : public tolk::Step {
 public:
  explicit KeptOptions(tolk::ParsedOptions given) : options(std::move(given)) {}
  std::shared_ptr<tolk::Step> work() override { return nullptr; }

  const tolk::ParsedOptions options;
};

}  // namespace tolk_fuzz

namespace tolk {

template <class Command>
std::shared_ptr<Step> keepOptions(ParsedOptions options) {
  return std::make_shared<tolk_fuzz::KeptOptions>(std::move(options));
}

}  // namespace tolk

#define getFn keepOptions
