#include "command_access/event_command_access.h"

#include "command_access/event_help_command_access.h"
#include "command_access/event_search_command_access.h"
#include "command_error.h"

namespace tolk {

std::shared_ptr<Step> EventCommandAccess::work() {
  if (hasOption("-s")) return std::make_shared<EventSearchCommandAccess>(options);
  if (hasOption("-h")) return std::make_shared<EventHelpCommandAccess>(options);
  return commandError("Error: not support this command", ExitCode::kUnsupported);
}

}  // namespace tolk
