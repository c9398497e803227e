#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/log_capture.h"

namespace tolk_test {

/// A simulated host whose files a test writes itself, so that what is read and what is expected stand
/// side by side. Each test starts from empty /sys, /proc, /dev and /etc. The program must be started by
/// ovgpu-sim; a test that is not touches nothing and fails.
class HostTree : public testing::Test {
 protected:
  void SetUp() override {
    // Only the simulated host has this file, and its folders are behind the paths that one opens.
    ASSERT_EQ(::access("/sys/.ovgpu-sim", F_OK), 0) << "to be started by ovgpu-sim";
    const int fd = ::open("/sys", O_PATH | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    char folder[PATH_MAX] = "";
    const ssize_t length =
        ::readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), folder, sizeof folder - 1);
    ::close(fd);
    ASSERT_GT(length, std::ssize("/sys"));
    root_ = std::filesystem::path(std::string(folder, static_cast<std::size_t>(length))).parent_path();
    for (const char* const name : {"sys", "proc", "dev", "etc"}) {
      std::filesystem::create_directories(root_ / name);
      for (const auto& entry : std::filesystem::directory_iterator(root_ / name)) {
        if (entry.path().filename() != ".ovgpu-sim") {
          std::filesystem::remove_all(entry.path());
        }
      }
    }
  }

  /// The file behind a path of the host.
  std::string behind(const std::string& path) const { return root_.string() + path; }

  void folder(const std::string& path) const { std::filesystem::create_directories(behind(path)); }
  void file(const std::string& path, const std::string& content = "") const {
    folder(path.substr(0, path.rfind('/')));
    std::ofstream(behind(path), std::ios::binary) << content;
  }
  void link(const std::string& path, const std::string& target) const {
    const std::filesystem::path place = behind(path);
    folder(path.substr(0, path.rfind('/')));
    std::filesystem::create_symlink(
        std::filesystem::path(behind(target)).lexically_relative(place.parent_path()), place);
  }
  void remove(const std::string& path) const { std::filesystem::remove_all(behind(path)); }

  /// A function that the driver is bound to, with its misc folders and no nodes.
  void boundFunction(const std::string& sbdf, const std::string& deviceId,
                     const std::vector<unsigned long>& miscNumbers) const {
    const std::string place = "/sys/devices/pci0000:00/" + sbdf;
    file(place + "/device", deviceId + "\n");
    folder(place + "/misc");
    for (const unsigned long number : miscNumbers) {
      folder(place + "/misc/ovgpu." + std::to_string(number));
    }
    link("/sys/bus/pci/devices/" + sbdf, place);
    link("/sys/bus/pci/drivers/ovgpu/" + sbdf, place);
  }
  void node(unsigned long number) const { file("/dev/ovgpu." + std::to_string(number)); }

  LogCapture log_;

 private:
  std::filesystem::path root_;
};

}  // namespace tolk_test
