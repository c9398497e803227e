#include "linux/ap/misc/mkis_protocol_v0/shared_buffer.h"

#include <sys/mman.h>

#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {

SharedBuffer::SharedBuffer(int fd, u32 size) : fd_(fd) {
  memory_.size = size;
  isAllocated_ = access(fd_, memory_) == KelpReturn::kSuccess;
  // The driver's copy of the size is not trusted.
  memory_.size = size;
  if (!isAllocated_ || memory_.mapSize < size) {
    return;
  }
  void* const bytes =
      rusk::SyscallWrapper::instance().mmap(memory_.mapSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
  bytes_ = bytes == MAP_FAILED ? nullptr : bytes;
}

SharedBuffer::~SharedBuffer() {
  if (bytes_ != nullptr) {
    rusk::SyscallWrapper::instance().munmap(bytes_, memory_.mapSize);
  }
  if (isAllocated_) {
    MkiFreeMemV0 memory{.size = memory_.size, .mapSize = memory_.mapSize, .handle = memory_.handle};
    access(fd_, memory);
  }
}

}  // namespace kelp::linux_
