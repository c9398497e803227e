#pragma once

#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "calls/records.h"
#include "calls/subject.h"

/// Calls of the library, each answered by one text: what it wrote, or "refused N" with the code. What a call
/// must never do stands in that text as a fault, so that it fails any comparison: an output that changed on a
/// failure, a text that fits into less room than it needs.
namespace tolk_test {

inline constexpr unsigned char kMark = 0x5A;

std::string refused(LumoReturn code);

/// What no call may do.
std::string fault(const std::string& what);
inline constexpr std::string_view kFault = "FAULT: ";

/// An output that knows whether it was written.
template <class Value>
class Marked {
 public:
  static_assert(std::is_trivially_copyable_v<Value>);
  Marked() { std::memset(&value, kMark, sizeof value); }
  bool isUntouched() const { return std::memcmp(&value, Marked().raw(), sizeof value) == 0; }
  const void* raw() const { return &value; }
  Value value;
};

/// The types that the last parameters of a function point to.
template <std::size_t first, class Places, class... Parameters>
struct OutputsOf;
template <std::size_t first, std::size_t... place, class... Parameters>
struct OutputsOf<first, std::index_sequence<place...>, Parameters...> {
  using Type = std::tuple<
      Marked<std::remove_pointer_t<std::tuple_element_t<first + place, std::tuple<Parameters...>>>>...>;
};

/// A function that takes a handle, `inputs`, and pointers to its outputs.
template <class Handle, class... Parameters, class... Inputs>
std::string ask(const Subject& on, LumoReturn (*function)(Handle*, Parameters...), const Inputs&... inputs) {
  constexpr std::size_t kOutputs = sizeof...(Parameters) - sizeof...(Inputs);
  typename OutputsOf<sizeof...(Inputs), std::make_index_sequence<kOutputs>, Parameters...>::Type outputs;
  return std::apply(
      [&](auto&... output) {
        const LumoReturn code = function(on, inputs..., &output.value...);
        if (code != LUMO_RETURN_SUCCESS) {
          return (output.isUntouched() && ...) ? refused(code) : fault(refused(code) + ", but wrote");
        }
        std::ostringstream text;
        [[maybe_unused]] const char* gap = "";
        ((text << std::exchange(gap, " "), print(text, output.value)), ...);
        return text.str();
      },
      outputs);
}

/// Codes of the calls that leave out the handle, and each output in turn: all have to be refused.
template <class Handle, class... Parameters, class... Inputs>
std::vector<LumoReturn> askNulls(const Subject& on, LumoReturn (*function)(Handle*, Parameters...),
                                 const Inputs&... inputs) {
  constexpr std::size_t kOutputs = sizeof...(Parameters) - sizeof...(Inputs);
  typename OutputsOf<sizeof...(Inputs), std::make_index_sequence<kOutputs>, Parameters...>::Type outputs;
  std::vector<LumoReturn> codes;
  for (std::size_t left = 0; left <= kOutputs; ++left) {
    std::size_t place = 0;
    codes.push_back(std::apply(
        [&](auto&... output) {
          [[maybe_unused]] const auto unlessLeft = [&](auto* value) {
            return ++place == left ? nullptr : value;
          };
          // In braces, where the order of evaluation is fixed.
          const std::tuple<decltype(&output.value)...> pointers{unlessLeft(&output.value)...};
          Handle* const handle = left == 0 ? nullptr : static_cast<Handle*>(on);
          return std::apply([&](auto*... pointer) { return function(handle, inputs..., pointer...); },
                            pointers);
        },
        outputs));
  }
  return codes;
}

/// A text, read with much room, with exactly enough, and with one byte too few.
std::string askText(const std::function<LumoReturn(char* buffer, unsigned size)>& read);

template <class Handle, class Length>
std::string askText(const Subject& on, LumoReturn (*function)(Handle*, char*, Length)) {
  return askText(
      [&](char* buffer, unsigned size) { return function(on, buffer, static_cast<Length>(size)); });
}

template <class Handle, class Length>
std::vector<LumoReturn> askTextNulls(const Subject& on, LumoReturn (*function)(Handle*, char*, Length)) {
  char buffer[256];
  return {function(nullptr, buffer, sizeof buffer), function(on, nullptr, sizeof buffer)};
}

/// Texts in one buffer, read the same three ways. `tooFew` is the code for a buffer of too few texts.
std::string askTexts(const std::function<LumoReturn(unsigned* count)>& count,
                     const std::function<LumoReturn(char* texts, unsigned width, unsigned count)>& get,
                     LumoReturn tooFew);

/// A list by its two functions: with room for one record more, which has to be cleared, and for one less.
template <class Handle, class... CountParameters, class... Parameters, class... Inputs>
std::string askList(const Subject& on, LumoReturn (*count)(Handle*, CountParameters...),
                    LumoReturn (*get)(Handle*, Parameters...), const Inputs&... inputs) {
  using Record = std::remove_pointer_t<std::tuple_element_t<sizeof...(Inputs), std::tuple<Parameters...>>>;
  Marked<unsigned> size;
  const LumoReturn code = count(on, inputs..., &size.value);
  std::vector<Marked<Record>> room(code == LUMO_RETURN_SUCCESS ? size.value + 2 : 1);
  Record* const records = &room.front().value;
  if (code != LUMO_RETURN_SUCCESS) {
    const bool isRefused = get(on, inputs..., records, 1) == code;
    const bool isWhole = isRefused && size.isUntouched() && room[0].isUntouched();
    return isWhole ? refused(code) : fault(refused(code) + ", but not all of the list");
  }
  if (size.value > 0 && (get(on, inputs..., records, size.value - 1) != LUMO_RETURN_INSUFFICIENT_SIZE ||
                         !room[0].isUntouched())) {
    return fault("fits into less room than it needs");
  }
  const LumoReturn got = get(on, inputs..., records, size.value + 1);
  if (got != LUMO_RETURN_SUCCESS) {
    return fault("counted, but " + refused(got));
  }
  Record cleared;
  std::memset(&cleared, 0, sizeof cleared);
  if (std::memcmp(&room[size.value].value, &cleared, sizeof cleared) != 0 || !room.back().isUntouched()) {
    return fault("wrote behind the last record");
  }
  std::ostringstream text;
  for (unsigned i = 0; i < size.value; ++i) {
    text << (i == 0 ? "" : "; ");
    print(text, room[i].value);
  }
  return size.value == 0 ? "empty" : text.str();
}

/// The null arguments of both functions of a list.
template <class Handle, class... CountParameters, class... Parameters, class... Inputs>
std::vector<LumoReturn> askListNulls(const Subject& on, LumoReturn (*count)(Handle*, CountParameters...),
                                     LumoReturn (*get)(Handle*, Parameters...), const Inputs&... inputs) {
  using Record = std::remove_pointer_t<std::tuple_element_t<sizeof...(Inputs), std::tuple<Parameters...>>>;
  unsigned size = 0;
  std::vector<Record> room(64);
  return {count(nullptr, inputs..., &size), count(on, inputs..., nullptr),
          get(nullptr, inputs..., room.data(), 64), get(on, inputs..., nullptr, 64)};
}

/// States of the sessions of a video engine, without those that are none.
std::string askStates(const Subject& on, LumoReturn (*function)(LumoVpu*, unsigned*, unsigned));

/// The retired pages of a cause.
std::string askPages(const Subject& on, unsigned cause);

/// The newest stored fault records, at most three; `read(events, capacity, count)`.
std::string askEvents(const std::function<LumoReturn(LumoEventData*, unsigned, unsigned*)>& read);

/// The devices at one level.
std::string askDevicesAtLevel(const Subject& on, unsigned level);

}  // namespace tolk_test
