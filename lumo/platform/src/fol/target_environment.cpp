#include "target_environment.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace kelp {
namespace {

constexpr std::string_view kLine = "envType: 0";
/// No parameter file is longer; what goes on and on is not one.
constexpr std::size_t kLongestFile = 1 << 20;

}  // namespace

bool readIsTargetEnvironment(const char* path) {
  std::ifstream file(path);
  std::string text;
  std::array<char, 4096> block;
  while (file && text.size() < kLongestFile) {
    file.read(block.data(), block.size());
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    if (rest.substr(0, end) == kLine) {
      return true;
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

}  // namespace kelp
