#pragma once

#include <dirent.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace kelp::linux_ {

/// Tells whether a walk is after an entry of this name.
using NameTest = std::function<bool(const char* name)>;

/// Kinds of entries that a walk looks at, as bits of its mask, by the `d_type` of the entry.
inline constexpr int kDirectories = 1;
/// All but folders and links, entries of unknown type among them.
inline constexpr int kOthers = 2;
inline constexpr int kLinks = 4;
inline constexpr int kAllKinds = kDirectories | kOthers | kLinks;
/// Not a kind: names come in ascending byte order instead of the folder's own.
inline constexpr int kSorted = 8;

/// Small pseudo files and folders. Nothing is kept between calls and nothing is thrown for what the
/// file system holds; a failure is logged here. The functions may run on any thread.
class FsHelper {
 public:
  /// Longest file that is read. Files of sysfs end at a page and those of procfs that matter here are
  /// hardly longer, so whatever goes on and on is not the file it should be: reading it fails.
  static constexpr std::int64_t kLongestFile = 1 << 20;

  /// Reads a whole file and returns its size; -1 when it cannot be read. The size is that of the bytes
  /// that come, since pseudo files state none. An empty file is no failure and leaves `out` as it was.
  static std::int64_t read(const std::string& path, std::string& out);

  /// Reads up to `length` bytes from `offset` on and returns their number. 0 when the file has nothing
  /// there or cannot be read.
  static std::size_t readData(std::ifstream& file, std::int64_t offset, char* buffer, std::size_t length);

  /// Type of the file system that is mounted on exactly this path, or "unknown".
  static std::string getFileSystemType(const std::string& path);

  /// Calls back for each entry of the kinds in `mask`, "." and ".." included, until a callback answers
  /// false. 0, or -1 with errno when the folder cannot be opened.
  static int iterEntries(const std::string& path, const std::function<bool(const dirent&)>& callback,
                         int mask = kAllKinds);

  /// Appends the names that pass the test. 0 or -1 as above.
  static int searchEntries(const std::string& path, const NameTest& test, std::vector<std::string>& out,
                           int mask);

  /// The first name that passes, in the order that `mask` asks for; an empty text when none does.
  static int searchEntry(const std::string& path, const NameTest& test, std::string& out, int mask);

  /// Whether some name passes. A folder that cannot be read has none.
  static bool hasEntry(const std::string& path, const NameTest& test, int mask);

  /// A test by an ECMAScript expression, compiled once, here. A faulty expression fits no name: each
  /// test then logs the fault.
  static NameTest expression(const std::string& pattern, bool fullMatch);

  /// One test by an expression, the whole text or a part of it. Whatever the expression library throws
  /// is logged and means false.
  static bool matchNoThrow(const char* text, const char* pattern, bool fullMatch);
};

}  // namespace kelp::linux_
