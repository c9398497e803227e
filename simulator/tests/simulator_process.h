// Runs ovgpu-sim of this build.
#ifndef SIMULATOR_PROCESS_H
#define SIMULATOR_PROCESS_H

#include <filesystem>
#include <string>
#include <vector>

struct Outcome {
  int status = 0;
  std::string out;
  std::string error;
};

/// `folder` is where ovgpu-sim and its parts lie; that of the build when it is empty.
Outcome runSimulator(const std::vector<std::string>& arguments, const std::string& folder = {});

/// Path of a program that the tests start.
std::string probe(const std::string& name);

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
std::vector<std::string> linesOf(const std::string& text);

#endif
