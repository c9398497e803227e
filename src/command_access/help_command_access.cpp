#include "command_access/help_command_access.h"

#include "command_output/help_output.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> HelpCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  return std::make_shared<HelpOutput>();
}

}  // namespace tolk
