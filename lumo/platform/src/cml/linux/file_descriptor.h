#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace kelp::linux_ {

/// An open file, closed with its owner.
class FileDescriptor {
 public:
  /// Opens a file for reading, out of reach of child processes. `isOpen` tells whether that worked,
  /// errno why not.
  static FileDescriptor openForReading(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  }

  explicit FileDescriptor(int fd = -1) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~FileDescriptor() {
    if (fd_ >= 0) {
      ::close(fd_);
    }
  }

  bool isOpen() const { return fd_ >= 0; }
  int get() const { return fd_; }

 private:
  int fd_;
};

}  // namespace kelp::linux_
