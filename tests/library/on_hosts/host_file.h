#pragma once

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace tolk_test {

/// The description of the host that the test runs on, so that what the library says is compared with what
/// the host was told to be. Places are JSON pointers, such as "/gpus/0/link/width".
class HostFile {
 public:
  explicit HostFile(const std::string& name)
      : json_(nlohmann::json::parse(std::ifstream(TOLK_HOST_FOLDER "/" + name + ".json"))) {}

  const nlohmann::json& at(const std::string& place) const {
    return json_.at(nlohmann::json::json_pointer(place));
  }
  unsigned long long number(const std::string& place) const { return at(place).get<unsigned long long>(); }
  /// As a call of the library is told: a text as it is, a number in decimal, an array with `gap` between.
  std::string text(const std::string& place, const std::string& gap = " ") const {
    return textOf(at(place), gap);
  }

 private:
  static std::string textOf(const nlohmann::json& value, const std::string& gap) {
    if (value.is_string()) {
      return value;
    }
    if (!value.is_array()) {
      return value.dump();
    }
    std::string joined;
    for (const nlohmann::json& element : value) {
      joined += (joined.empty() ? "" : gap) + textOf(element, gap);
    }
    return joined;
  }

  nlohmann::json json_;
};

}  // namespace tolk_test
