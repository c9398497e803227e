#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tolk_fuzz {

/// A regular file in memory, for readers that take a path.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void write(std::string_view content);
  std::string read() const;

  const std::string& path() const { return path_; }

 private:
  int fd_;
  std::string path_;
};

}  // namespace tolk_fuzz
