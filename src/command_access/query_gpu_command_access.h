#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "command_access/command_access_base.h"

namespace tolk {

class LumoAccessDevice;
struct QueryGpuField;

/// The command `--query-gpu`: chosen fields of each GPU, for scripts. A thread for each GPU reads its
/// fields, so that slow GPUs are waited for together. A field that cannot be read is "N/A"; only a field
/// that there is not, or no GPU at all, ends the command.
class QueryGpuCommandAccess : public CommandAccessBase {
 public:
  using CommandAccessBase::CommandAccessBase;

  std::shared_ptr<Step> work() override;

 private:
  using Devices = std::map<std::uint32_t, std::shared_ptr<LumoAccessDevice>>;

  // Null, or the step that reports the failure.

  /// The fields of "--query-gpu" in their order, each once.
  std::shared_ptr<Step> listFields(std::vector<const QueryGpuField*>& fields) const;

  /// The devices of "-i", or all.
  std::shared_ptr<Step> getTargetDevices(Devices& targets);

  bool wantsHeader() const;

  std::uint32_t deviceCount_ = 0;  ///< of the machine; set by getTargetDevices
};

}  // namespace tolk
