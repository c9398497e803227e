#include "command_output/event_help_output.h"

#include <string_view>

namespace tolk {

namespace {

constexpr std::string_view kLines[] = {
    "event -- Event information.",
    "orvane-tolk event [options]",
    "Options include:",
    "[-h | --help]: Display help information.",
    "[-s | --search]:Display target event information.",
    "Available event type:",
    "XID = 1",
    "plus any of:",
    "[-i | --id]: Specify one Gpu by index.",
    "[-u | --uuid]: Specify one Gpu by uuid.",
    "[-n | --number]:Set expected number. Max support 500 for each device.",
    "[--json]: Display detailed info in json format.",
};

}  // namespace

std::shared_ptr<Step> EventHelpOutput::work() {
  for (const auto line : kLines) std::cout << line << '\n';
  std::cout << std::flush;
  return nullptr;
}

}  // namespace tolk
