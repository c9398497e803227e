#pragma once

namespace rusk {

/// The two system calls by which the kernel driver is reached. They return what the system returned
/// and leave errno alone. A class so that tests can answer in the driver's place.
class SyscallWrapper {
 public:
  virtual ~SyscallWrapper() = default;

  virtual int ioctl(int fd, unsigned long request, void* argument);
  virtual int open(const char* path, int flags);

  /// The one in use, at first the real one.
  static SyscallWrapper& instance();

  /// Puts another one in use, null the real one, and returns what was put before it, null for the real
  /// one. The caller keeps it alive until it has been exchanged again.
  static SyscallWrapper* exchange(SyscallWrapper* other);
};

}  // namespace rusk
