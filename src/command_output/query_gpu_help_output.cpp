#include "command_output/query_gpu_help_output.h"

#include "query_gpu_fields.h"

namespace tolk {

std::shared_ptr<Step> QueryGpuHelpOutput::work() {
  std::cout << "List of valid properties to query for the switch \"--query-gpu\":" << std::endl << std::endl;
  for (const auto& field : queryGpuFields()) {
    std::cout << '"' << field.name << '"' << std::endl;
    std::cout << field.description << std::endl << std::endl;
  }
  return nullptr;
}

}  // namespace tolk
