#include "linux/ap/misc/misc_kernel_accessor_base.h"

#include <string>

#include "kelp_log.h"

namespace kelp::linux_ {

void MiscKernelAccessorBase::logFailure(const char* action, KelpReturn state) const {
  KELP_LOG(kError) << std::string("failed to ").append(action).append(", access error is ") << state;
}

}  // namespace kelp::linux_
