#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "rusk/log_target.h"

namespace rusk {

/// Appends log lines to a file. A file with more than maxLines lines is emptied by the next line, so a
/// log that is left switched on does not fill the disk.
///
/// write() and open() may be called from any thread; the public fields are set while one thread logs.
/// A file that cannot be written loses lines in silence.
class LogToFile final : public LogTarget {
 public:
  bool write(const std::string& line, int level) override;
  /// Opens fileName for appending and counts the lines it already has. Creates the folder the file is
  /// in, but none above it. After a failure there is no file, also none that was open before.
  bool open() override;

  std::string fileName;

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  bool isOpen();

  std::unique_ptr<std::FILE, CloseFile> stream_;
  std::mutex mutex_;

 public:
  std::uint64_t maxLines = 10000;

 private:
  std::uint64_t lineCount_ = 0;

 public:
  /// What is written in place of a line while useTransform is set.
  std::function<std::string(const std::string&)> transform;
  bool useTransform = false;
};

}  // namespace rusk
