#include "command_access/vgpu_command_access.h"

#include "command_access/vgpu_created_command_access.h"
#include "command_access/vgpu_query_command_access.h"
#include "command_access/vgpu_sessions_command_access.h"
#include "command_access/vgpu_support_command_access.h"
#include "command_access/vgpu_utilization_command_access.h"
#include "command_error.h"
#include "command_factory.h"

namespace tolk {

namespace {

struct Form {
  const char* option;
  CommandFactory::Make make;
};

constexpr Form kForms[] = {
    {"-c", getFn<VgpuCreatedCommandAccess>},          {"-s", getFn<VgpuSupportCommandAccess>},
    {"-es", getFn<VgpuEncoderSessionsCommandAccess>}, {"-ds", getFn<VgpuDecoderSessionsCommandAccess>},
    {"-u", getFn<VgpuUtilizationCommandAccess>},      {"-q", getFn<VgpuQueryCommandAccess>},
};

}  // namespace

std::shared_ptr<Step> VgpuCommandAccess::work() {
  const Form* asked = nullptr;
  for (const auto& form : kForms) {
    if (!hasOption(form.option)) continue;
    if (asked != nullptr) {
      return commandError("Error: input wrong option combination", ExitCode::kUnsupported);
    }
    asked = &form;
  }
  if (asked == nullptr) return commandError("Error: not support this command", ExitCode::kUnsupported);
  return asked->make(options);
}

}  // namespace tolk
