#include "linux/environment.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

#include "kelp_log.h"
#include "linux/file_descriptor.h"
#include "linux/fs_helper.h"
#include "linux/paths.h"
#include "rusk/text.h"

namespace kelp::linux_ {
namespace {

/// What the kernel takes as one argument of a command line; a process that says more is cut short.
constexpr std::size_t kLongestArgument = 128 << 10;

constexpr std::array kModeTexts{
    std::pair{"-1", DriverMode::kBareHost},
    std::pair{"0", DriverMode::kVirtualisationHost},
    std::pair{"1", DriverMode::kGuest},
};

/// Words in the control group of process 1 of a container.
constexpr std::array kContainerWords{"docker", "kubepods", "lxc"};

/// Their complaints are not for the tool's user.
constexpr std::array kPackageQueries{
    "dpkg -s vela 2>/dev/null",
    "rpm -qi vela 2>/dev/null",
    "dpkg -s vela_all-in-one 2>/dev/null",
    "rpm -qi vela_all-in-one 2>/dev/null",
};

constexpr std::string_view kVersionKey = "Version";

bool exists(const char* path) {
  return ::access(path, F_OK) == 0;
}

std::string readUpToNul(const FileDescriptor& file) {
  std::string text;
  std::array<char, 4096> block;
  while (text.size() < kLongestArgument) {
    const ssize_t count = ::read(file.get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      break;
    }
    const std::string_view part(block.data(), static_cast<std::size_t>(count));
    const std::size_t end = part.find('\0');
    text += part.substr(0, end);
    if (end != std::string_view::npos) {
      break;
    }
  }
  return text;
}

/// The first line of a command's output that begins with the key, or nothing.
std::string queryVersionLine(const char* command) {
  std::FILE* output = ::popen(command, "re");
  if (output == nullptr) {
    return {};
  }
  std::string version;
  std::array<char, 200> line;
  bool atLineStart = true;
  while (std::fgets(line.data(), static_cast<int>(line.size()), output) != nullptr) {
    const std::string_view text = line.data();
    const bool isStart = std::exchange(atLineStart, text.ends_with('\n'));
    if (isStart && text.starts_with(kVersionKey)) {
      version = text;
      break;
    }
  }
  ::pclose(output);
  return version;
}

}  // namespace

Stated<DriverMode> Environment::getDriverMode() {
  std::string text;
  if (FsHelper::read(kDriverModeFile, text) < 0) {
    KELP_LOG(kError) << "read from " << kDriverModeFile << " failed";
    return KelpReturn::kReadFailed;
  }
  KELP_LOG(kInfo) << "get " << kDriverModeFile << " content is " << text;
  const std::string_view mode = rusk::trim(text);
  for (const auto& [modeText, driverMode] : kModeTexts) {
    if (mode == modeText) {
      return driverMode;
    }
  }
  return DriverMode::kOther;
}

Stated<GpuEnvType> Environment::getGpuEnvironmentType() {
  if (!exists(kFirstMiscNode)) {
    KELP_LOG(kError) << "No ovgpu device found under " << kDeviceFolder;
    return KelpReturn::kDriverNotLoaded;
  }
  return exists(kAcceleratorNode) && exists(kNeuralNode) ? GpuEnvType::kComplete : GpuEnvType::kPartial;
}

Stated<EnvironmentType> Environment::getEnvironmentType() {
  const std::string fsType = FsHelper::getFileSystemType(kCgroupFolder);
  std::string cgroup;
  if (FsHelper::read(kInitCgroupFile, cgroup) < 0) {
    return KelpReturn::kReadFailed;
  }
  for (const char* word : kContainerWords) {
    if (cgroup.find(word) != std::string::npos) {
      return EnvironmentType::kContainer;
    }
  }
  // With the unified hierarchy the words are gone; what is left is that a host's process 1 is in the
  // scope of the init system.
  if (fsType == "cgroup2" && cgroup.find("0::/init.scope") == std::string::npos) {
    return EnvironmentType::kContainer;
  }
  return EnvironmentType::kHost;
}

Stated<std::string> Environment::getProcessName(std::uint32_t pid) {
  const std::string path = kProcFolder + std::to_string(pid) + "/cmdline";
  if (!exists(path.c_str())) {
    KELP_LOG(kError) << "pid " << pid << " not found";
    return KelpReturn::kNotFound;
  }
  if (::access(path.c_str(), R_OK) != 0) {
    KELP_LOG(kWarn) << "no permission to read " << pid;
    return KelpReturn::kNoPermission;
  }
  const FileDescriptor file = FileDescriptor::openForReading(path);
  if (!file.isOpen()) {
    KELP_LOG(kError) << "open pid " << pid << " failed";
    return KelpReturn::kFailure;
  }
  return readUpToNul(file);
}

Stated<std::string> Environment::getDriverVersion() {
  if (std::string version = readDriverVersionFromFile(); !version.empty()) {
    return version;
  }
  KELP_LOG(kWarn) << "get driver package version from file failed, use deb/rpm command for a try";
  return queryDriverVersionFromPackage();
}

std::string Environment::readDriverVersionFromFile() {
  std::string text;
  if (FsHelper::read(kDriverVersionFile, text) < 0) {
    KELP_LOG(kError) << "read from " << kDriverVersionFile << " failed";
    return {};
  }
  text.resize(std::min(text.find('\0'), text.size()));
  KELP_LOG(kInfo) << "driver package version read from file value is " << text;
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    KELP_LOG(kError) << "Failed to parse version, no colon found in \"" << text
                     << "\", the correct format is \"package version:x.x.x\"";
    return {};
  }
  return std::string(rusk::trim(std::string_view(text).substr(colon + 1)));
}

Stated<std::string> Environment::queryDriverVersionFromPackage() {
  std::string line;
  for (const char* command : kPackageQueries) {
    line = queryVersionLine(command);
    if (!line.empty()) {
      break;
    }
  }
  if (line.empty()) {
    return KelpReturn::kFailure;
  }
  // One package manager writes "Version: 1.3.0-8", another pads the key before the colon.
  std::string_view words = line;
  if (words.ends_with(' ')) {
    words.remove_suffix(1);
  }
  const std::string_view release = words.substr(words.rfind(' ') + 1);
  if (release.empty()) {
    KELP_LOG(kError) << "syncCall(SystemGetDriverVersion): Fail to parse main string - " << line;
    return KelpReturn::kFailure;
  }
  const std::string_view version = release.substr(0, release.find_first_of("_-"));
  if (version.empty()) {
    KELP_LOG(kError) << "syncCall(SystemGetDriverVersion): Fail to parse version string - " << release;
    return KelpReturn::kFailure;
  }
  return std::string(rusk::trim(version));
}

}  // namespace kelp::linux_
