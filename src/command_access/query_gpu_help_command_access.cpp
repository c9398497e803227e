#include "command_access/query_gpu_help_command_access.h"

#include "command_output/query_gpu_help_output.h"

namespace tolk {

std::shared_ptr<Step> QueryGpuHelpCommandAccess::work() {
  startLog();
  return std::make_shared<QueryGpuHelpOutput>();
}

}  // namespace tolk
