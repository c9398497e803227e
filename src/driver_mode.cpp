#include "driver_mode.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>

#include "rusk/text.h"

namespace tolk {

namespace {

constexpr const char* kParameterPath = "/sys/module/ovgpu/parameters/ovgpu_driver_mode";

DriverMode currentMode = DriverMode::kOther;

/// A module parameter is a page at most.
constexpr std::size_t kLongestParameter = 4096;

/// The whole file, or nothing if it cannot be opened.
std::string readParameter() {
  std::string content;
  const int fd = ::open(kParameterPath, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return content;
  std::array<char, 64> part;
  while (content.size() < kLongestParameter) {
    const ssize_t got = ::read(fd, part.data(), part.size());
    if (got <= 0) break;
    content.append(part.data(), static_cast<std::size_t>(got));
  }
  ::close(fd);
  return content;
}

}  // namespace

DriverMode driverMode() {
  return currentMode;
}

void setDriverMode(DriverMode mode) {
  currentMode = mode;
}

DriverMode readDriverMode() {
  return driverModeOf(readParameter());
}

DriverMode driverModeOf(std::string_view text) {
  const auto number = rusk::trim(text);
  if (number == "-1") return DriverMode::kBareHost;
  if (number == "0") return DriverMode::kVirtualisationHost;
  if (number == "1") return DriverMode::kGuest;
  return DriverMode::kOther;
}

}  // namespace tolk
