#include "support/memory_file.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/property.h"

namespace tolk_fuzz {

MemoryFile::MemoryFile()
    : fd_(::memfd_create("fuzz", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(fd_)) {
  expect(fd_ >= 0, "a file in memory can be made");
}

MemoryFile::~MemoryFile() {
  ::close(fd_);
}

void MemoryFile::write(std::string_view content) {
  const bool written = ::ftruncate(fd_, 0) == 0 && ::pwrite(fd_, content.data(), content.size(), 0) ==
                                                       static_cast<ssize_t>(content.size());
  expect(written, "a file in memory can be written");
}

std::string MemoryFile::read() const {
  struct stat status {};
  ::fstat(fd_, &status);
  std::string content(static_cast<std::size_t>(status.st_size), '\0');
  const bool isRead = ::pread(fd_, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size());
  expect(isRead, "a file in memory can be read");
  return content;
}

}  // namespace tolk_fuzz
