#include "core_model.h"

#include <utility>

#include "linux/ap/access_point.h"

namespace kelp {

CoreModel::CoreModel(const DevCuid& cuid, std::string knownUuid)
    : cuid_(cuid),
      knownUuid_(std::move(knownUuid)),
      accessPoint_(std::make_unique<linux_::AccessPoint>(cuid, knownUuid_)) {}

CoreModel::~CoreModel() = default;

void CoreModel::reopen(const DevCuid& cuid) {
  accessPoint_ = std::make_unique<linux_::AccessPoint>(cuid, knownUuid_);
  // A device that does not come back answers state 5 from its commands.
  static_cast<void>(accessPoint_->init());
}

template <class Cmd>
Stated<typename Cmd::Result> CoreModel::exec(const Cmd& cmd) const {
  if (accessPoint_ == nullptr || !accessPoint_->getDevDesc().ok()) {
    return KelpReturn::kNotInitialized;
  }
  return static_cast<linux_::AccessPoint&>(*accessPoint_).doExec(cmd);
}

#define COMMAND(name) template Stated<name::Result> CoreModel::exec(const name&) const;

#define MISC_INTERFACE(number, name, ...) COMMAND(name##Cmd)
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE
#define RENDER_INTERFACE(number, name, ...) COMMAND(name##Cmd)
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE
COMMAND(QueryPcieInfoCmd)
COMMAND(QueryEfuseCmd)
COMMAND(QueryAffinityWithinNodeCmd)
COMMAND(QuerySupportedVirtTypesCmd)
COMMAND(QueryAvailableVirtTypesCmd)
COMMAND(QueryAvailableVirtInstancesCmd)
COMMAND(QueryActiveVirtUuidsCmd)
COMMAND(QueryVirtTypeCmd)
COMMAND(QueryVgpuIdCmd)
COMMAND(QueryVmPidCmd)

#undef COMMAND

}  // namespace kelp
