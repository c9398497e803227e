// record-replies WAY FAMILY FIRST COUNT >FILE
//
// Asks the driver of this machine COUNT interfaces from number FIRST of the table on, and prints questions
// and answers as an input of the target driver_replies. Run on a simulated host whose only GPU is number 0.
#include <sys/mman.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "rusk/syscall_wrapper.h"
#include "support/driver_ways.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kCall = 0xC0084DAF;
constexpr std::uint32_t kRenderIndirect = 0xC028648A;
constexpr std::uint8_t kFirstFailure = 0xF0;

template <class Number>
Number numberAt(const std::uint8_t* record, std::size_t offset) {
  Number number;
  std::memcpy(&number, record + offset, sizeof number);
  return number;
}

/// The real calls, whose answers are kept.
class RecordingDriver : public rusk::SyscallWrapper {
 public:
  explicit RecordingDriver(Bytes& record) : record_(record), former_(SyscallWrapper::exchange(this)) {}
  ~RecordingDriver() override { SyscallWrapper::exchange(former_); }

  int open(const char* path, int flags) override {
    const int fd = SyscallWrapper::open(path, flags);
    record_.push_back(fd < 0 ? kFirstFailure : 0);
    return fd;
  }

  int ioctl(int fd, unsigned long request, void* argument) override {
    auto* const bytes = static_cast<std::uint8_t*>(argument);
    std::uint8_t* reply = bytes;
    std::size_t size = request >> 16 & 0x3FFF;
    if (request == kCall) {
      const std::size_t start = numberAt<std::uint32_t>(bytes, 8) == 2 ? 40 : 24;
      reply = bytes + start;
      size = 24 + numberAt<std::uint32_t>(bytes, 12) - start;
    } else if (request == kRenderIndirect) {
      reply = reinterpret_cast<std::uint8_t*>(numberAt<std::uintptr_t>(bytes, 8));
      size = numberAt<std::uint32_t>(bytes, 4);
    }
    const Bytes sent(reply, reply + size);
    const int result = SyscallWrapper::ioctl(fd, request, argument);
    const int error = errno;
    const auto status = static_cast<std::uint8_t>(request == kCall ? numberAt<std::uint32_t>(bytes, 4) : 0);
    record_.push_back(result == 0 ? status : kFirstFailure + (error == ENOTTY ? 3 : 0));
    // The replies of a failed call are not read in protocol 1.
    if (result == 0 || request != kCall) keepReply({reply, reply + size}, sent);
    errno = error;
    return result;
  }

  void* mmap(std::size_t length, int protection, int flags, int fd, off_t offset) override {
    mapped_ = record_.size();
    return SyscallWrapper::mmap(length, protection, flags, fd, offset);
  }

  /// What the firmware left in the buffer is what the input's driver maps at once.
  int munmap(void* address, std::size_t length) override {
    const auto* const bytes = static_cast<const std::uint8_t*>(address);
    const Bytes behind(record_.begin() + static_cast<std::ptrdiff_t>(mapped_), record_.end());
    record_.resize(mapped_);
    record_.push_back(0);
    keepReply({bytes, bytes + length}, Bytes(length));
    record_.insert(record_.end(), behind.begin(), behind.end());
    return SyscallWrapper::munmap(address, length);
  }

 private:
  /// Without the end that is as it was sent.
  void keepReply(const Bytes& reply, const Bytes& sent) {
    std::size_t size = reply.size();
    while (size > 0 && reply[size - 1] == sent[size - 1]) --size;
    record_.push_back(static_cast<std::uint8_t>(size & 0xFF));
    record_.push_back(static_cast<std::uint8_t>(size >> 8));
    record_.insert(record_.end(), reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(size));
  }

  Bytes& record_;
  rusk::SyscallWrapper* former_;
  std::size_t mapped_ = 0;
};

/// One round of questions; `interfaceAt` becomes where that of the interface begins.
Bytes ask(const Bytes& choices, std::size_t& interfaceAt) {
  Bytes record;
  tolk_fuzz::FuzzInput input(choices.data(), choices.size());
  std::size_t taken = 0;
  const std::size_t takenBefore = choices.size() - 2;
  input.taken = [&](const void* number, std::size_t size) {
    if (taken++ == takenBefore) interfaceAt = record.size();
    const auto* const bytes = static_cast<const std::uint8_t*>(number);
    record.insert(record.end(), bytes, bytes + size);
  };
  const RecordingDriver driver(record);
  tolk_fuzz::tryDriver(input);
  return record;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 5) {
    std::fputs("usage: record-replies WAY FAMILY FIRST COUNT\n", stderr);
    return 2;
  }
  std::array<std::uint8_t, 4> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = static_cast<std::uint8_t>(std::atoi(arguments[i + 1]));
  }
  const auto [way, family, first, most] = numbers;
  Bytes file;
  for (int i = 0; i < most; ++i) {
    constexpr int kRenderWay = 3;
    Bytes choices{way, family};
    // The version of the interface that describes the cores.
    if (way == kRenderWay) choices.push_back(2);
    choices.insert(choices.end(), {static_cast<std::uint8_t>(first + i), 0});
    std::size_t interfaceAt = 0;
    const Bytes round = ask(choices, interfaceAt);
    file.insert(file.end(), round.begin() + (file.empty() ? 0 : static_cast<std::ptrdiff_t>(interfaceAt)),
                round.end());
  }
  std::fwrite(file.data(), 1, file.size(), stdout);
  return 0;
}
