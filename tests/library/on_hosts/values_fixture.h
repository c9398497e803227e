#pragma once

#include <string>

#include "calls/ask.h"
#include "on_hosts/host_file.h"
#include "on_hosts/host_fixture.h"

namespace tolk_test {

/// A host beside its description. The GPUs of the description are the library's devices, in the same order.
class ValuesFixture : public HostFixture {
 protected:
  explicit ValuesFixture(const std::string& host) : file_(host) {}

  Subject of(unsigned gpu) { return Subject::of(device(gpu)); }
  Subject of(unsigned gpu, unsigned other) { return Subject::of(device(gpu), device(other)); }

  /// What the description says of a GPU: "values/power/0", "processes/1/pid".
  std::string told(unsigned gpu, const std::string& key) const { return file_.text(place(gpu, key)); }
  unsigned long long number(unsigned gpu, const std::string& key) const {
    return file_.number(place(gpu, key));
  }
  /// Several in a row.
  std::string tolds(unsigned gpu, std::initializer_list<const char*> keys) const {
    std::string joined;
    for (const char* const key : keys) {
      joined += (joined.empty() ? "" : " ") + told(gpu, key);
    }
    return joined;
  }

  static std::string text(unsigned long long number) { return std::to_string(number); }

  HostFile file_;

 private:
  static std::string place(unsigned gpu, const std::string& key) {
    return "/gpus/" + std::to_string(gpu) + "/" + key;
  }
};

/// One device of several families, with no two values alike.
class ValuesHost : public ValuesFixture {
 protected:
  ValuesHost() : ValuesFixture("values") {}
  static constexpr unsigned kTor1 = 0;
  static constexpr unsigned kPeer = 1;
  static constexpr unsigned kFen2 = 2;
  static constexpr unsigned kB230E = 3;
  static constexpr unsigned kWold = 4;
  static constexpr const char* kNotSupported = "refused 4";
};

}  // namespace tolk_test
