#include "scratch_folder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  std::string pattern = (fs::temp_directory_path() / "ovgpu-sim-test.XXXXXX").string();
  path = mkdtemp(pattern.data());
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

std::string ScratchFolder::write(const std::string& name, const std::string& text) const {
  std::ofstream(path / name) << text;
  return (path / name).string();
}

std::string readText(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}
