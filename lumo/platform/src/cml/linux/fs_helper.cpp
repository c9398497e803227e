#include "linux/fs_helper.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <regex>
#include <string_view>
#include <utility>

#include "kelp_log.h"
#include "linux/file_descriptor.h"
#include "linux/paths.h"

namespace kelp::linux_ {
namespace {

constexpr std::size_t kPage = 4096;

/// Number of bytes from the start of the file to its end, -1 when they cannot be had. The place in the
/// file stays.
std::int64_t measure(std::ifstream& file) {
  const std::ifstream::pos_type place = file.tellg();
  file.seekg(0);
  // One byte more than is allowed tells a file that is too long without reading it to its end.
  file.ignore(FsHelper::kLongestFile + 1);
  const std::int64_t size = file.gcount();
  if (file.bad() || size > FsHelper::kLongestFile) {
    return -1;
  }
  file.clear(file.rdstate() & ~std::ios::eofbit);
  file.seekg(place);
  return file.fail() ? -1 : size;
}

/// The next run of characters that are no white space; it is removed from the front of `line`.
std::string_view takeWord(std::string_view& line) {
  constexpr std::string_view kWhiteSpace = " \t\n";
  line.remove_prefix(std::min(line.find_first_not_of(kWhiteSpace), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(kWhiteSpace));
  line.remove_prefix(word.size());
  return word;
}

bool isAllowed(unsigned char type, int mask) {
  switch (type) {
    case DT_DIR:
      return (mask & kDirectories) != 0;
    case DT_LNK:
      return (mask & kLinks) != 0;
    default:
      return (mask & kOthers) != 0;
  }
}

/// A compiled expression, or why it could not be compiled.
class Expression {
 public:
  Expression(const std::string& pattern, bool fullMatch) : pattern_(pattern), fullMatch_(fullMatch) {
    try {
      compiled_.emplace(pattern);
    } catch (const std::exception& error) {
      fault_ = error.what();
    }
  }

  bool fits(const char* text) const {
    if (!compiled_) {
      logFault(fault_.c_str(), text);
      return false;
    }
    try {
      return fullMatch_ ? std::regex_match(text, *compiled_) : std::regex_search(text, *compiled_);
    } catch (const std::exception& error) {
      logFault(error.what(), text);
      return false;
    }
  }

 private:
  void logFault(const char* fault, const char* text) const {
    KELP_LOG(kError) << "matchNoThrow() meet exception with error [" << fault << "] when match [" << pattern_
                     << "] in [" << text << "]";
  }

  std::string pattern_;
  bool fullMatch_;
  std::optional<std::regex> compiled_;
  std::string fault_;
};

}  // namespace

std::int64_t FsHelper::read(const std::string& path, std::string& out) {
  const FileDescriptor file = FileDescriptor::openForReading(path);
  if (!file.isOpen()) {
    // The number is that of a stream that failed to open.
    KELP_LOG(kError) << "Read text file :" << path
                     << ", open failed, state = " << static_cast<int>(std::ios::failbit);
    return -1;
  }
  // Size and content in one go: a driver may show another text on a second read.
  std::string text;
  std::array<char, kPage> block;
  for (;;) {
    const ssize_t count = ::read(file.get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0 || std::ssize(text) + count > kLongestFile) {
      KELP_LOG(kError) << "Read text file:" << path << ", failed to read file size";
      return -1;
    }
    if (count == 0) {
      break;
    }
    text.append(block.data(), static_cast<std::size_t>(count));
  }
  if (text.empty()) {
    KELP_LOG(kWarn) << "Read text file:" << path << "is empty";
    return 0;
  }
  out = std::move(text);
  return std::ssize(out);
}

std::size_t FsHelper::readData(std::ifstream& file, std::int64_t offset, char* buffer, std::size_t length) {
  const std::int64_t size = measure(file);
  if (size < 0) {
    KELP_LOG(kError) << "Read data: failed to read file size";
    return 0;
  }
  if (offset < 0 || size <= offset) {
    KELP_LOG(kError) << "Read data: offset(" << offset << ") overflow, filesize(" << size << ")";
    return 0;
  }
  const std::size_t count = std::min(length, static_cast<std::size_t>(size - offset));
  file.seekg(offset);
  file.read(buffer, static_cast<std::streamsize>(count));
  if (!file) {
    KELP_LOG(kError) << "Read data: failed to read " << count << "data start from offset " << offset;
    return 0;
  }
  return count;
}

std::string FsHelper::getFileSystemType(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> mounts(std::fopen(kMountsFile, "re"), std::fclose);
  if (mounts == nullptr) {
    KELP_LOG(kError) << "ifstream error!";
    return "unknown";
  }
  // The options at a line's end may be long, the three words at its start are not.
  std::array<char, kPage> line;
  bool atLineStart = true;
  while (std::fgets(line.data(), static_cast<int>(line.size()), mounts.get()) != nullptr) {
    std::string_view rest = line.data();
    const bool isStart = std::exchange(atLineStart, rest.ends_with('\n'));
    takeWord(rest);
    if (isStart && takeWord(rest) == path) {
      return std::string(takeWord(rest));
    }
  }
  KELP_LOG(kError) << "error: can't find " << path;
  return "unknown";
}

int FsHelper::iterEntries(const std::string& path, const std::function<bool(const dirent&)>& callback,
                          int mask) {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), ::closedir);
  if (folder == nullptr) {
    KELP_LOG(kError) << "iterFiles() fail to open :" << path;  // sic
    return -1;
  }
  while (const dirent* entry = ::readdir(folder.get())) {
    if (isAllowed(entry->d_type, mask) && !callback(*entry)) {
      break;
    }
  }
  return 0;
}

int FsHelper::searchEntries(const std::string& path, const NameTest& test, std::vector<std::string>& out,
                            int mask) {
  const int result = iterEntries(
      path,
      [&](const dirent& entry) {
        if (test(entry.d_name)) {
          out.emplace_back(entry.d_name);
        }
        return true;
      },
      mask);
  if ((mask & kSorted) != 0) {
    std::ranges::sort(out);
  }
  return result;
}

int FsHelper::searchEntry(const std::string& path, const NameTest& test, std::string& out, int mask) {
  out.clear();
  return iterEntries(
      path,
      [&](const dirent& entry) {
        if (!test(entry.d_name)) {
          return true;
        }
        if (out.empty() || out > entry.d_name) {
          out = entry.d_name;
        }
        return (mask & kSorted) != 0;
      },
      mask);
}

bool FsHelper::hasEntry(const std::string& path, const NameTest& test, int mask) {
  std::string name;
  return searchEntry(path, test, name, mask) == 0 && !name.empty();
}

NameTest FsHelper::expression(const std::string& pattern, bool fullMatch) {
  // Shared, since a std::function is copied and a compiled expression is dear to copy.
  return [expression = std::make_shared<const Expression>(pattern, fullMatch)](const char* name) {
    return expression->fits(name);
  };
}

bool FsHelper::matchNoThrow(const char* text, const char* pattern, bool fullMatch) {
  return Expression(pattern, fullMatch).fits(text);
}

}  // namespace kelp::linux_
