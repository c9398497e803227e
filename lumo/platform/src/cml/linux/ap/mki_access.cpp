#include "linux/ap/mki_access.h"

#include <cerrno>

#include "kelp_log.h"
#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {

KelpReturn accessRecord(int fd, const char* recordName, u32 request, void* record) {
  if (fd < 0) {
    KELP_LOG(kError) << "access<" << recordName << "fd is invalid !";
    return KelpReturn::kFailure;
  }
  if (const int result = rusk::SyscallWrapper::instance().ioctl(fd, request, record); result != 0) {
    const int error = errno;
    KELP_LOG(kError) << "access<" << recordName << "> ioctl return error = " << result
                     << ", errno = " << error;
    return KelpReturn::kFailure;
  }
  return KelpReturn::kSuccess;
}

}  // namespace kelp::linux_
