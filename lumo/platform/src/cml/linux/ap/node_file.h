#pragma once

#include <string>
#include <utility>

namespace kelp::linux_ {

/// An open device node; closed with its owner.
class NodeFile {
 public:
  NodeFile() = default;
  explicit NodeFile(int fd) : fd_(fd) {}
  NodeFile(NodeFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  NodeFile& operator=(NodeFile&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~NodeFile();

  /// Opens a node for reading and writing; errno says why when the result is not `isOpen`.
  static NodeFile open(const std::string& path);

  bool isOpen() const { return fd_ >= 0; }
  int fd() const { return fd_; }

 private:
  int fd_ = -1;
};

}  // namespace kelp::linux_
