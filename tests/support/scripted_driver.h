#pragma once

#include <gtest/gtest.h>
#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "rusk/syscall_wrapper.h"

namespace tolk_test {

/// A kernel driver in process that answers exactly what a test tells it to: an open of a path or a
/// request that was not announced fails the test. While it lives it stands in for the system calls.
class ScriptedDriver : public rusk::SyscallWrapper {
 public:
  /// Gets the record's bytes; the result is 0 or the errno that the call fails with.
  using Answer = std::function<int(std::uint8_t* record)>;

  ScriptedDriver() : former_(rusk::SyscallWrapper::exchange(this)) {}
  ~ScriptedDriver() override { rusk::SyscallWrapper::exchange(former_); }

  void allowOpen(const std::string& path, int error = 0) { opens_[path] = error; }
  void answer(std::uint32_t request, Answer answer) { answers_[request] = std::move(answer); }
  void fail(std::uint32_t request, int error) {
    answer(request, [error](std::uint8_t*) { return error; });
  }

  int open(const char* path, int flags) override {
    const auto found = opens_.find(path);
    EXPECT_NE(found, opens_.end()) << "unexpected open of " << path;
    EXPECT_EQ(flags & O_ACCMODE, O_RDWR);
    const int error = found == opens_.end() ? ENOENT : found->second;
    if (error != 0) {
      errno = error;
      return -1;
    }
    return ::open("/dev/null", O_RDWR | O_CLOEXEC);
  }

  int ioctl(int fd, unsigned long request, void* argument) override {
    EXPECT_GE(fd, 0) << "a request on no descriptor";
    calls.push_back(static_cast<std::uint32_t>(request));
    const auto found = answers_.find(static_cast<std::uint32_t>(request));
    EXPECT_NE(found, answers_.end()) << "unexpected request 0x" << std::hex << request;
    const int error = found == answers_.end() ? ENOTTY : found->second(static_cast<std::uint8_t*>(argument));
    if (error != 0) {
      errno = error;
      return -1;
    }
    return 0;
  }

  std::size_t count(std::uint32_t request) const {
    std::size_t n = 0;
    for (const std::uint32_t call : calls) {
      n += call == request ? 1U : 0U;
    }
    return n;
  }

  std::vector<std::uint32_t> calls;

 private:
  rusk::SyscallWrapper* former_;
  std::map<std::string, int> opens_;
  std::map<std::uint32_t, Answer> answers_;
};

template <class T>
T get(const std::uint8_t* record, std::size_t offset) {
  T value;
  std::memcpy(&value, record + offset, sizeof value);
  return value;
}

template <class T>
void put(std::uint8_t* record, std::size_t offset, T value) {
  std::memcpy(record + offset, &value, sizeof value);
}

}  // namespace tolk_test
