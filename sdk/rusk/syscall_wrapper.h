#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>

namespace rusk {

/// The system calls by which the kernel driver is reached and waited for. They return what the system
/// returned and leave errno alone. A class so that tests can answer in the driver's place.
class SyscallWrapper {
 public:
  virtual ~SyscallWrapper() = default;

  virtual int ioctl(int fd, unsigned long request, void* argument);
  virtual int open(const char* path, int flags);
  /// Always at an address of the system's choice.
  virtual void* mmap(std::size_t length, int protection, int flags, int fd, off_t offset);
  virtual int munmap(void* address, std::size_t length);
  /// After an interruption `left` is what remains; it may be the same object as `time`.
  virtual int nanosleep(const timespec& time, timespec& left);

  /// The one in use, at first the real one.
  static SyscallWrapper& instance();

  /// Puts another one in use, null the real one, and returns what was put before it, null for the real
  /// one. The caller keeps it alive until it has been exchanged again.
  static SyscallWrapper* exchange(SyscallWrapper* other);
};

}  // namespace rusk
