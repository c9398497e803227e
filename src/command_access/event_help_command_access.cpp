#include "command_access/event_help_command_access.h"

#include "command_output/event_help_output.h"

namespace tolk {

std::shared_ptr<Step> EventHelpCommandAccess::work() {
  startLog();
  return std::make_shared<EventHelpOutput>();
}

}  // namespace tolk
