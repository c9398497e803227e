#include <array>
#include <cerrno>
#include <ctime>

#include "kelp_log.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_record.h"
#include "rusk/syscall_wrapper.h"

namespace kelp::linux_ {
namespace {

constexpr int kAttempts = 10;
constexpr long kPauseNs = 100'000'000;

void pause() {
  auto& system = rusk::SyscallWrapper::instance();
  timespec left{.tv_sec = 0, .tv_nsec = kPauseNs};
  while (system.nanosleep(left, left) != 0 && errno == EINTR) {
  }
}

std::string hexText(u32 number) {
  std::array<char, 9> text{};
  std::snprintf(text.data(), text.size(), "%x", number);
  return text.data();
}

}  // namespace

KelpReturn runCommand(int fd, const char* name, u32 command, void* record) {
  if (fd < 0) {
    KELP_LOG(kError) << "cmd<" << name << "> fd is invalid !";
    return KelpReturn::kFailure;
  }
  auto& system = rusk::SyscallWrapper::instance();
  std::array<u8, kIpcRecordSize> request;
  std::memcpy(request.data(), record, request.size());
  int result = 0;
  int error = 0;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    result = system.ioctl(fd, kIpcRequest, record);
    if (result == 0) {
      return KelpReturn::kSuccess;
    }
    error = errno;
    pause();
    // A call that fails may have come back with anything in its record.
    std::memcpy(record, request.data(), request.size());
  }
  KELP_LOG(kError) << "cmd<" << name << "> ioctl return error = " << result << ", errno = " << error
                   << ", cmd:0x" << hexText(command);
  return KelpReturn::kFailure;
}

}  // namespace kelp::linux_
