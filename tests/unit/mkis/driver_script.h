#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/scripted_driver.h"

namespace tolk_test {

/// An interface of the driver's list with its range of versions.
struct Listed {
  std::uint16_t name;
  std::uint8_t min;
  std::uint8_t max;
};

/// A driver of protocol 1 whose devices are all alike. Interfaces are listed and answered as a test
/// says; a call of one that has no answer gets driver status 5. Keeps which nodes are open. Request
/// numbers and offsets are typed from the driver's tables, not taken from the records under test.
class DriverScript : public ScriptedDriver {
 public:
  static constexpr std::uint32_t kProbe = 0xC00C4DAE;
  static constexpr std::uint32_t kOldProbe = 0xC0104DB0;
  static constexpr std::uint32_t kCall = 0xC0084DAF;
  static constexpr std::uint32_t kRenderProbe = 0xC010648B;
  static constexpr std::uint32_t kRenderList = 0xC148648C;
  static constexpr std::uint32_t kRenderInline = 0xC0A0648A;

  /// Gets a zeroed payload with the request in it; the result is the driver's status.
  using Reply = std::function<std::uint32_t(std::uint8_t* payload)>;

  explicit DriverScript(std::vector<Listed> entries) : listed(std::move(entries)) {
    answer(kProbe, [this](std::uint8_t* r) {
      put<std::uint16_t>(r, 0, currentMajor);
      put<std::uint16_t>(r, 2, currentMinor);
      return 0;
    });
    answer(kCall, [this](std::uint8_t* r) { return answerCall(r); });
  }

  void on(std::uint16_t interface, Reply reply) { replies_[interface] = std::move(reply); }

  /// A render node with one core, whose list has the interface of the cores in this version.
  void allowRender(const std::string& path, std::uint32_t specVersion = 1) {
    allowOpen(path);
    answer(kRenderProbe, [](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 1);
      return 0;
    });
    answer(kRenderList, [specVersion](std::uint8_t* r) {
      put<std::uint32_t>(r, 4, 1);
      put<std::uint32_t>(r, 8, 100004);
      put<std::uint32_t>(r, 12, specVersion);
      return 0;
    });
    answer(kRenderInline, [](std::uint8_t* r) {
      put<std::uint32_t>(r, 8, 1);
      return 0;
    });
  }

  int open(const char* path, int flags) override {
    const int fd = ScriptedDriver::open(path, flags);
    if (fd >= 0) {
      opened_.emplace_back(path, fd);
    }
    return fd;
  }

  std::size_t opens(const std::string& path) const {
    return static_cast<std::size_t>(std::ranges::count(opened_, path, &std::pair<std::string, int>::first));
  }

  /// Whether the descriptor of the last open of a node is still there. Any open afterwards may take the
  /// number of one that was closed.
  bool isOpen(const std::string& path) const {
    const auto last =
        std::find_if(opened_.rbegin(), opened_.rend(), [&](const auto& row) { return row.first == path; });
    return last != opened_.rend() && ::fcntl(last->second, F_GETFD) >= 0;
  }

  /// How often an interface was called.
  std::size_t called(std::uint16_t interface) const {
    return static_cast<std::size_t>(std::ranges::count(called_, interface));
  }

  std::vector<Listed> listed;
  std::uint16_t currentMajor = 1;
  std::uint16_t currentMinor = 0;

 private:
  int answerCall(std::uint8_t* r) {
    std::uint32_t status = 0;
    switch (get<std::uint32_t>(r, 8)) {
      case 0:
        put<std::uint16_t>(r, 24, static_cast<std::uint16_t>(listed.size()));
        break;
      case 1:
        for (std::size_t i = 0; i < listed.size(); ++i) {
          put<std::uint16_t>(r, 36 + i * 12, listed[i].name);
          put<std::uint8_t>(r, 36 + i * 12 + 2, listed[i].max);
          put<std::uint8_t>(r, 36 + i * 12 + 3, listed[i].min);
        }
        break;
      default: {
        const auto interface = get<std::uint16_t>(r, 24);
        called_.push_back(interface);
        const auto reply = replies_.find(interface);
        status = reply == replies_.end() ? 5 : reply->second(r + 40);
      }
    }
    put<std::uint32_t>(r, 4, status);
    return 0;
  }

  std::map<std::uint16_t, Reply> replies_;
  std::vector<std::uint16_t> called_;
  std::vector<std::pair<std::string, int>> opened_;
};

}  // namespace tolk_test
