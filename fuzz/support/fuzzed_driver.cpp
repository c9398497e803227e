#include "support/fuzzed_driver.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <array>
#include <cerrno>

#include "support/property.h"

namespace tolk_fuzz {
namespace {

// Request numbers and offsets are the driver's.
constexpr std::uint32_t kCall = 0xC0084DAF;
constexpr std::uint32_t kRenderIndirect = 0xC028648A;
constexpr std::uint32_t kCallType = 2;
constexpr std::size_t kHeader = 24;
constexpr std::size_t kPayload = 40;

/// From this outcome on a call fails.
constexpr std::uint8_t kFirstFailure = 0xF0;
constexpr std::array kErrors{EIO, EINTR, EAGAIN, ENOTTY, ENODEV, EINVAL, EFAULT, ENOMEM};
constexpr std::size_t kLargestBuffer = 1 << 20;

template <class Number>
Number numberAt(const std::uint8_t* record, std::size_t offset) {
  Number number;
  std::memcpy(&number, record + offset, sizeof number);
  return number;
}

std::size_t sizeOf(std::uint32_t request) {
  return request >> 16 & 0x3FFF;
}

}  // namespace

FuzzedDriver::FuzzedDriver(FuzzInput& input) : input_(input), former_(SyscallWrapper::exchange(this)) {}

FuzzedDriver::~FuzzedDriver() {
  SyscallWrapper::exchange(former_);
  expect(buffers_.empty(), "every mapping is given back");
}

std::uint8_t FuzzedDriver::takeOutcome() {
  if (input_.atEnd()) {
    errno = EIO;
    return kFirstFailure;
  }
  const auto outcome = input_.take<std::uint8_t>();
  if (outcome >= kFirstFailure) errno = kErrors[outcome % kErrors.size()];
  return outcome;
}

void FuzzedDriver::reply(std::uint8_t* to, std::size_t size) {
  const auto bytes = input_.takeBytes(std::min<std::size_t>(input_.take<std::uint16_t>(), size));
  std::copy(bytes.begin(), bytes.end(), to);
}

void FuzzedDriver::answerCall(std::uint8_t* record, std::uint8_t outcome) {
  const std::uint32_t status = outcome % 16U;
  std::memcpy(record + 4, &status, sizeof status);
  const bool isCall = numberAt<std::uint32_t>(record, 8) == kCallType;
  const std::size_t size = kHeader + numberAt<std::uint32_t>(record, 12);
  const std::size_t start = isCall ? kPayload : kHeader;
  expect(size >= start, "a record has room for what it says that it is");
  expect(!isCall || numberAt<std::uint32_t>(record, 28) == size - kPayload, "a record's sizes agree");
  reply(record + start, size - start);
}

int FuzzedDriver::open(const char* /*path*/, int flags) {
  if (takeOutcome() >= kFirstFailure) return -1;
  const int fd = ::open("/dev/null", flags);
  expect(fd >= 0, "nodes are closed");
  return fd;
}

int FuzzedDriver::ioctl(int fd, unsigned long request, void* argument) {
  expect(fd >= 0, "no request goes to a node that is not open");
  auto* const record = static_cast<std::uint8_t*>(argument);
  const std::uint8_t outcome = takeOutcome();
  if (request == kCall) {
    if (outcome < kFirstFailure) answerCall(record, outcome);
  } else if (request == kRenderIndirect) {
    const std::size_t size = numberAt<std::uint32_t>(record, 4);
    reply(reinterpret_cast<std::uint8_t*>(numberAt<std::uintptr_t>(record, 8)), size);
  } else {
    // One that fails may have written all the same.
    const int error = errno;
    reply(record, sizeOf(static_cast<std::uint32_t>(request)));
    errno = error;
  }
  return outcome >= kFirstFailure ? -1 : 0;
}

void* FuzzedDriver::mmap(std::size_t length, int /*protection*/, int /*flags*/, int /*fd*/,
                         off_t /*offset*/) {
  if (takeOutcome() >= kFirstFailure || length == 0 || length > kLargestBuffer) return MAP_FAILED;
  std::vector<std::uint8_t> buffer(length);
  reply(buffer.data(), buffer.size());
  void* const address = buffer.data();
  buffers_[address] = std::move(buffer);
  return address;
}

int FuzzedDriver::munmap(void* address, std::size_t length) {
  const auto buffer = buffers_.find(address);
  expect(buffer != buffers_.end() && buffer->second.size() == length, "what is unmapped was mapped");
  buffers_.erase(buffer);
  return 0;
}

int FuzzedDriver::nanosleep(const timespec& /*time*/, timespec& /*left*/) {
  return 0;
}

}  // namespace tolk_fuzz
