#pragma once

#include <map>
#include <memory>
#include <vector>

#include "rusk/syscall_wrapper.h"
#include "support/fuzz_input.h"

namespace tolk_fuzz {

/// A kernel driver whose every answer comes from the input. While it lives it stands in for the system calls.
///
/// An answer is a byte that says how the call ends, then two of a length and so many of the reply; what the
/// reply leaves of the record stays as it was sent. Behind the end of the input every call fails with EIO.
/// Nothing is ever written outside the record that the caller stated, as a driver cannot either.
class FuzzedDriver : public rusk::SyscallWrapper {
 public:
  explicit FuzzedDriver(FuzzInput& input);
  ~FuzzedDriver() override;

  int open(const char* path, int flags) override;
  int ioctl(int fd, unsigned long request, void* argument) override;
  void* mmap(std::size_t length, int protection, int flags, int fd, off_t offset) override;
  int munmap(void* address, std::size_t length) override;
  /// At once.
  int nanosleep(const timespec& time, timespec& left) override;

 private:
  /// The byte that says how a call ends; with errno set when that is a failure.
  std::uint8_t takeOutcome();
  void reply(std::uint8_t* to, std::size_t size);
  void answerCall(std::uint8_t* record, std::uint8_t outcome);

  FuzzInput& input_;
  rusk::SyscallWrapper* former_;
  std::map<void*, std::vector<std::uint8_t>> buffers_;
};

}  // namespace tolk_fuzz
