#include "command_output/query_gpu_help_output.h"

#include "query_gpu_fields.h"

namespace tolk {

std::shared_ptr<Step> QueryGpuHelpOutput::work() {
  std::cout << "List of valid properties to query for the switch \"--query-gpu\":\n\n";
  for (const auto& field : queryGpuFields()) {
    std::cout << '"' << field.name << "\"\n" << field.description << "\n\n";
  }
  std::cout << std::flush;
  return nullptr;
}

}  // namespace tolk
