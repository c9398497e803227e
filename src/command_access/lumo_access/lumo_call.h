#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "common_define.h"
#include "lumo.h"

namespace tolk {

/// Room for a text of the library that has no length of its own.
inline constexpr std::size_t kTextSize = 256;

/// An entry point of the library with its name, and the place that calls it: a failure is logged in
/// the name of that place.
template <class Function>
struct LumoEntry {
  Function* function;
  const char* name;
  const char* source;
  unsigned line;
  const char* caller;
  const char* failure = nullptr;  ///< words for the log in place of the name
};

#define LUMO_ENTRY(function)                                  \
  ::tolk::LumoEntry {                                         \
    &(function), #function, __FILE_NAME__, __LINE__, __func__ \
  }

/// The same with words of its own for a failure, in front of the status.
#define LUMO_ENTRY_SAYING(function, failure)                           \
  ::tolk::LumoEntry {                                                  \
    &(function), #function, __FILE_NAME__, __LINE__, __func__, failure \
  }

/// Makes a timed call and logs its failure.
template <class Function, class... Arguments>
LumoReturn callLumo(const LumoEntry<Function>& entry, Arguments... arguments) {
  const LumoReturn ret = wrapperLumo(entry.name, entry.function, arguments...);
  if (ret != LUMO_RETURN_SUCCESS) {
    rusk::LogLine line(entry.source, entry.line, entry.caller, rusk::LogLevel::kError, frontLogger());
    if (entry.failure != nullptr) {
      line << entry.failure << ret;
    } else {
      line << entry.name << "() failed, ret = " << ret;
    }
  }
  return ret;
}

/// Reads one value. `out` is set by a success alone: a call that came back too late has failed, though
/// it may have written its value.
template <class Value, class Function, class... Arguments>
LumoReturn queryLumo(const LumoEntry<Function>& entry, Value& out, Arguments... arguments) {
  Value value{};
  const LumoReturn ret = callLumo(entry, arguments..., &value);
  if (ret == LUMO_RETURN_SUCCESS) out = value;
  return ret;
}

/// Reads two values.
template <class Value, class Function, class... Arguments>
LumoReturn queryLumoPair(const LumoEntry<Function>& entry, Value& first, Value& second,
                         Arguments... arguments) {
  Value one{};
  Value other{};
  const LumoReturn ret = callLumo(entry, arguments..., &one, &other);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  first = one;
  second = other;
  return ret;
}

/// Reads a text of less than `size` bytes.
template <std::size_t size, class Function, class... Arguments>
LumoReturn queryLumoText(const LumoEntry<Function>& entry, std::string& out, Arguments... arguments) {
  std::array<char, size> text{};
  const LumoReturn ret = callLumo(entry, arguments..., text.data(), static_cast<unsigned>(size));
  if (ret == LUMO_RETURN_SUCCESS) out.assign(text.data(), ::strnlen(text.data(), size));
  return ret;
}

/// Reads a list: counts, then fills. A list that shrank in between ends in zeroed entries. No list call
/// is made for a count of 0, which the library would refuse.
template <class Entry, class Count, class List, class... Handles>
LumoReturn queryLumoList(const LumoEntry<Count>& count, const LumoEntry<List>& list, std::vector<Entry>& out,
                         Handles... handles) {
  unsigned size = 0;
  if (const LumoReturn ret = queryLumo(count, size, handles...); ret != LUMO_RETURN_SUCCESS) return ret;
  std::vector<Entry> entries(size);
  const LumoReturn ret = size == 0 ? LUMO_RETURN_SUCCESS : callLumo(list, handles..., entries.data(), size);
  if (ret == LUMO_RETURN_SUCCESS) out = std::move(entries);
  return ret;
}

/// Reads a list of texts of less than `width` bytes each, empty ones left out.
template <std::size_t width, class Count, class List, class Handle>
LumoReturn queryLumoTexts(const LumoEntry<Count>& count, const LumoEntry<List>& list,
                          std::vector<std::string>& out, Handle* handle) {
  unsigned size = 0;
  if (const LumoReturn ret = queryLumo(count, size, handle); ret != LUMO_RETURN_SUCCESS) return ret;
  std::vector<char> texts(size * width);
  const LumoReturn ret = size == 0 ? LUMO_RETURN_SUCCESS
                                   : callLumo(list, handle, texts.data(), static_cast<unsigned>(width), size);
  if (ret != LUMO_RETURN_SUCCESS) return ret;
  out.clear();
  for (std::size_t at = 0; at < texts.size(); at += width) {
    if (texts[at] != '\0') out.emplace_back(&texts[at], ::strnlen(&texts[at], width));
  }
  return ret;
}

}  // namespace tolk
