#include "linux/ap/node_file.h"

#include <fcntl.h>
#include <unistd.h>

#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {

NodeFile::~NodeFile() {
  if (fd_ >= 0) {
    ::close(fd_);
  }
}

NodeFile NodeFile::open(const std::string& path) {
  // Close-on-exec, so that a package query's child never holds a GPU open.
  return NodeFile(rusk::SyscallWrapper::instance().open(path.c_str(), O_RDWR | O_CLOEXEC));
}

}  // namespace kelp::linux_
