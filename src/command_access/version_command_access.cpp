#include "command_access/version_command_access.h"

#include "command_output/version_output.h"
#include "common_define.h"

namespace tolk {

std::shared_ptr<Step> VersionCommandAccess::work() {
  startLog();
  TOLK_LOG(kTrace);
  return std::make_shared<VersionOutput>();
}

}  // namespace tolk
