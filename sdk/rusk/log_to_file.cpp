#include "rusk/log_to_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace rusk {
namespace {

constexpr mode_t kFolderMode = 0777;

bool makeFolderOf(const std::string& fileName) {
  const auto separator = fileName.find_last_of("/\\");  // sic: a backslash ends a folder here too
  if (separator == std::string::npos) return true;
  const std::string folder = fileName.substr(0, separator + 1);
  struct stat info {};
  if (folder.size() <= 1 || ::stat(folder.c_str(), &info) == 0) return true;
  // Another run may have made the folder since it was looked for.
  return ::mkdir(folder.c_str(), kFolderMode) == 0 || errno == EEXIST;
}

/// Lines of a file, an unfinished last one included. Devices have none: some are endless. What other
/// runs append meanwhile is not counted, so the file's size bounds the work.
std::uint64_t countLines(const std::string& fileName) {
  struct stat info {};
  if (::stat(fileName.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return 0;
  std::FILE* file = std::fopen(fileName.c_str(), "re");
  if (file == nullptr) return 0;

  std::array<char, 16384> block;
  auto unread = static_cast<std::uint64_t>(info.st_size);
  std::uint64_t lines = 0;
  bool insideLine = false;
  while (unread > 0) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(unread, block.size()));
    const std::size_t size = std::fread(block.data(), 1, wanted, file);
    if (size == 0) break;
    lines += static_cast<std::uint64_t>(std::count(block.data(), block.data() + size, '\n'));
    insideLine = block[size - 1] != '\n';
    unread -= size;
  }
  std::fclose(file);
  return insideLine ? lines + 1 : lines;
}

}  // namespace

bool LogToFile::isOpen() {
  std::lock_guard lock(mutex_);
  return stream_ != nullptr;
}

bool LogToFile::open() {
  std::lock_guard lock(mutex_);
  stream_.reset();
  if (!makeFolderOf(fileName)) return false;
  stream_.reset(std::fopen(fileName.c_str(), "ae"));
  if (!stream_) return false;
  lineCount_ = countLines(fileName);
  return true;
}

bool LogToFile::write(const std::string& line, int level) {
  if (level < minLevel || !isOpen()) return false;

  // Enciphering is most of the work of a line, so threads do it side by side, outside the mutex.
  std::string text = useTransform && transform ? transform(line) : line;
  text += '\n';

  std::lock_guard lock(mutex_);
  if (!stream_) return false;
  if (lineCount_ > maxLines) {
    stream_.reset();
    stream_.reset(std::fopen(fileName.c_str(), "we"));
    lineCount_ = 0;
    if (!stream_) return false;
  }
  ++lineCount_;
  // A stream that failed once stays failed: the rest of a cut record must not run into a later one.
  if (std::ferror(stream_.get())) return false;
  return std::fwrite(text.data(), 1, text.size(), stream_.get()) == text.size() &&
         std::fflush(stream_.get()) == 0;
}

}  // namespace rusk
