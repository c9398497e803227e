#pragma once

#include <any>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <typeindex>
#include <utility>
#include <vector>

#include "core_model.h"
#include "model_manager.h"

namespace tolk_test {

/// What the device model stands on, as one test wants it. Commands that were not given an answer fail
/// with state 1. There is one at a time.
class FakePlatform {
 public:
  FakePlatform();
  ~FakePlatform();
  static FakePlatform& instance();

  /// The answer of every device to one command.
  template <class Cmd>
  void answer(kelp::Stated<typename Cmd::Result> reply) {
    answerBy<Cmd>([reply](const kelp::DevCuid&, const Cmd&) { return reply; });
  }

  template <class Cmd>
  void answerBy(std::function<kelp::Stated<typename Cmd::Result>(const kelp::DevCuid&, const Cmd&)> reply) {
    answers_[typeid(Cmd)] = std::move(reply);
  }

  template <class Cmd>
  kelp::Stated<typename Cmd::Result> run(const char* name, const kelp::DevCuid& cuid, const Cmd& cmd) {
    asked.emplace_back(name);
    const auto found = answers_.find(typeid(Cmd));
    if (found == answers_.end()) {
      return kelp::KelpReturn::kFailure;
    }
    using Reply = std::function<kelp::Stated<typename Cmd::Result>(const kelp::DevCuid&, const Cmd&)>;
    return std::any_cast<const Reply&>(found->second)(cuid, cmd);
  }

  std::size_t count(const std::string& command) const;

  /// The description of every device but those of `descOf`, which has them by internal id.
  kelp::Stated<kelp::DevDesc> desc = kelp::DevDesc{};
  std::map<std::uint64_t, kelp::Stated<kelp::DevDesc>> descOf;
  kelp::Stated<kelp::DevCuidSet> pcieCuids = kelp::DevCuidSet{};
  kelp::Stated<kelp::DevCuidSet> mpciCuids = kelp::DevCuidSet{};
  kelp::Stated<kelp::DevCuidSet> virtCuids = kelp::DevCuidSet{};
  /// What sysfs says of two functions, and the two that were asked for last.
  kelp::Stated<kelp::TopologyLevel> topologyLevel = kelp::TopologyLevel::kSystem;
  std::pair<std::string, std::string> topologyOf;
  kelp::Stated<std::vector<std::string>> nics = std::vector<std::string>{};
  kelp::Stated<std::string> driverVersion = std::string("1.2.3");
  std::uint32_t pid = 0;  ///< whose name was asked for last
  kelp::Stated<std::string> processName = std::string("/usr/bin/app");
  /// Commands in the order in which they were run.
  std::vector<std::string> asked;
  int modelInits = 0;
  /// "close" and "reopen" with the internal id of the device that was left alone, in order.
  std::vector<std::string> othersTouched;

 private:
  std::map<std::type_index, std::any> answers_;
};

kelp::DevCuid makeCuid(kelp::DevType type, kelp::DevArch arch, std::uint64_t intId = 0);

}  // namespace tolk_test
