#pragma once

#include <algorithm>
#include <any>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "lumo.h"

namespace tolk_test {

/// Handles are only compared and handed on. In the text of a call they read "device 0", "gpu 0" and so
/// on, and "null".
template <class Handle>
inline char handleCells[64];

template <class Handle>
Handle* handleOf(unsigned number = 0) {
  return reinterpret_cast<Handle*>(&handleCells<Handle>[number]);
}

inline LumoDevice* device(unsigned number) {
  return handleOf<LumoDevice>(number);
}

/// What the entry points of the library answer in these tests, which link no other library. Set by a
/// test before it calls.
///
/// A call has a text, which is the function's name and what goes into it, without the places for its
/// outputs: "lumoDeviceGetFanSpeed(device 0, 2)". Answers and failures are looked up by that text first,
/// then by the name alone.
struct FakeLumo {
  FakeLumo();

  std::vector<std::string> calls;  ///< names
  std::vector<std::string> lines;  ///< texts

  LumoLogConfiguration log{};

  /// One answer for each output of the function, in the order of its arguments. An answer has the type
  /// that the output points to, or is a vector of them for a list and a std::string for a text. A
  /// function without answers gives the handle number 0, an empty text or a cleared record.
  template <class... Answers>
  void set(const std::string& call, Answers... outputs) {
    answers[call] = {std::any(std::move(outputs))...};
  }

  /// Values that a function with one output gives one after the other; the last stays.
  template <class Value>
  void setSteps(const std::string& call, const std::vector<Value>& values) {
    auto& [list, next] = steps[call];
    list.clear();
    next = 0;
    for (const auto& value : values) list.push_back({std::any(value)});
  }

  /// A list with the function that counts it.
  template <class Entry>
  void setList(const std::string& countCall, const std::string& listCall, std::vector<Entry> entries) {
    set(countCall, static_cast<unsigned>(entries.size()));
    set(listCall, std::move(entries));
  }

  /// The next statuses of a function, success when used up. A call that fails writes its outputs all the
  /// same, so that a test sees whether the caller keeps its hands off them.
  void fail(const std::string& call, std::deque<LumoReturn> statuses) {
    failures[call] = std::move(statuses);
  }

  std::ptrdiff_t timesCalled(const std::string& name) const { return std::ranges::count(calls, name); }

  struct Steps {
    std::vector<std::vector<std::any>> list;
    std::size_t next = 0;
  };

  std::map<std::string, std::vector<std::any>> answers;
  std::map<std::string, Steps> steps;  ///< these come first
  std::map<std::string, std::deque<LumoReturn>> failures;
};

/// The one that answers; a test starts with `fakeLumo() = {}`.
FakeLumo& fakeLumo();

}  // namespace tolk_test
