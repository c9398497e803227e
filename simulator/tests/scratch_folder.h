// Files of a test's own.
#ifndef SCRATCH_FOLDER_H
#define SCRATCH_FOLDER_H

#include <filesystem>
#include <string>

/// A folder of the test's own, removed with it.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string operator/(const std::string& name) const { return (path / name).string(); }
  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& text) const;

  std::filesystem::path path;
};

std::string readText(const std::string& path);

#endif
