#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "lumo.h"

namespace tolk_test {

/// What the entry points of the library answer in these tests, which link no other library. Set by a
/// test before it calls, and read by the threads of its calls one after the other.
struct FakeLumo {
  /// The next statuses of an entry point by its name, success when used up. A call that fails writes
  /// its output all the same, so that a test sees whether the caller keeps its hands off it.
  std::map<std::string, std::deque<LumoReturn>> failures;
  std::vector<std::string> calls;

  unsigned deviceCount = 1;
  unsigned index = 3;
  std::string name = "OVT B240";
  std::string uuid = "00000000-0000-0000-0000-000000000001";
  unsigned long long property = 0;
  LumoMpcProfile profile{};
  LumoPciInfo pci{};
  std::string version = "3.1.0";
  unsigned value = 7;
  std::vector<LumoProcessMemUsage> processes;
  unsigned processesAtCount = 0;  ///< how many are counted, where a test wants another number than listed
  unsigned instanceCount = 0;
  LumoLogConfiguration log{};

  /// Notes the call; its status.
  LumoReturn answer(const char* entryPoint);
  void fail(const std::string& entryPoint, std::deque<LumoReturn> statuses) {
    failures[entryPoint] = std::move(statuses);
  }
  std::ptrdiff_t timesCalled(const std::string& entryPoint) const {
    return std::ranges::count(calls, entryPoint);
  }
};

/// The one that answers; a test starts with `fakeLumo() = {}`.
FakeLumo& fakeLumo();

}  // namespace tolk_test
