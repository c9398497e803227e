#include "host_environment.h"

#include <sys/resource.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include "common_define.h"

namespace tolk {

namespace {

/// No parameter file and no command line of a virtual machine is longer; what goes on and on is neither.
constexpr std::size_t kLongestFile = 1 << 20;

}  // namespace

bool hostHasMdevBus() {
  std::error_code ignored;
  return std::filesystem::status("/sys/class/mdev_bus", ignored).type() !=
         std::filesystem::file_type::not_found;
}

void raiseOpenFileLimit() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= limit.rlim_max) return;
  limit.rlim_cur = limit.rlim_max;
  static_cast<void>(::setrlimit(RLIMIT_NOFILE, &limit));
}

std::optional<std::string> readWholeFile(const char* path) {
  std::ifstream file(path);
  if (!file) return std::nullopt;
  std::string text;
  std::array<char, 4096> block;
  while (file && text.size() < kLongestFile) {
    file.read(block.data(), block.size());
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  return text;
}

bool isTargetEnv(const char* path) {
  auto text = readWholeFile(path);
  if (!text) {
    TOLK_LOG(kError) << "failed to open env path";
    return false;
  }
  std::istringstream lines(*std::move(text));
  for (std::string line; std::getline(lines, line);) {
    if (line == "envType: 0") return true;
  }
  return false;
}

}  // namespace tolk
