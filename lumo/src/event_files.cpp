#include "event_files.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string_view>

namespace lumo {
namespace {

constexpr const char* kProcFolder = "/proc/driver/vela";
constexpr std::string_view kFolderPrefix = "gpu";
constexpr std::string_view kNodePrefix = "ovgpu.";
constexpr int kLongestNodeName = 64;

bool isGpuFolder(std::string_view name) {
  if (!name.starts_with(kFolderPrefix)) return false;
  name.remove_prefix(kFolderPrefix.size());
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size();
}

std::string readNodeName(const std::filesystem::path& file) {
  std::string name;
  std::ifstream(file) >> std::setw(kLongestNodeName) >> name;
  return name;
}

}  // namespace

std::unordered_map<std::string, std::string> findEventFiles() {
  std::unordered_map<std::string, std::string> files;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(kProcFolder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!isGpuFolder(entry->path().filename().native())) continue;
    const std::string nodeName = readNodeName(entry->path() / "devname");
    if (nodeName.starts_with(kNodePrefix)) files.emplace("/dev/" + nodeName, entry->path() / "event_report");
  }
  return files;
}

}  // namespace lumo
