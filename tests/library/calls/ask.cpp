#include "calls/ask.h"

#include <algorithm>

namespace tolk_test {
namespace {

constexpr unsigned kRoom = 4096;
constexpr char kMarkChar = static_cast<char>(kMark);
/// More than any device has.
constexpr unsigned kStates = 600;

bool isMarked(const std::vector<char>& buffer) {
  return std::ranges::all_of(buffer, [](char c) { return c == kMarkChar; });
}

bool isCleared(auto first, auto last) {
  return std::all_of(first, last, [](char c) { return c == '\0'; });
}

std::string join(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) {
    joined += (joined.empty() ? "" : "; ") + part;
  }
  return parts.empty() ? "empty" : joined;
}

}  // namespace

std::string refused(LumoReturn code) {
  return "refused " + std::to_string(code);
}

std::string fault(const std::string& what) {
  return std::string(kFault) + what;
}

std::string askText(const std::function<LumoReturn(char* buffer, unsigned size)>& read) {
  std::vector<char> room(kRoom + 1, kMarkChar);
  const LumoReturn code = read(room.data(), kRoom);
  if (code != LUMO_RETURN_SUCCESS) {
    return isMarked(room) ? refused(code) : fault(refused(code) + ", but wrote");
  }
  const unsigned length = static_cast<unsigned>(strnlen(room.data(), kRoom));
  if (room.back() != kMarkChar || length == kRoom || !isCleared(room.begin() + length, room.end() - 1)) {
    return fault("buffer not cleared");
  }
  std::vector<char> tight(length + 2, kMarkChar);
  if (read(tight.data(), length) != LUMO_RETURN_INSUFFICIENT_SIZE || !isMarked(tight)) {
    return fault("fits into less room than it needs");
  }
  if (read(tight.data(), length + 1) != LUMO_RETURN_SUCCESS || tight.back() != kMarkChar ||
      !std::equal(tight.begin(), tight.end() - 1, room.begin())) {
    return fault("does not fit into the room it needs");
  }
  return room.data();
}

std::string askTexts(const std::function<LumoReturn(unsigned* count)>& count,
                     const std::function<LumoReturn(char* texts, unsigned width, unsigned count)>& get,
                     LumoReturn tooFew) {
  constexpr unsigned kWidth = 64;
  unsigned size = 0;
  const LumoReturn code = count(&size);
  std::vector<char> room(static_cast<std::size_t>(size + 1) * kWidth + 1, kMarkChar);
  const LumoReturn got = get(room.data(), kWidth, size + 1);
  if (got != code || room.back() != kMarkChar) {
    return fault("counted " + std::to_string(size) + ", but " + refused(got));
  }
  if (code != LUMO_RETURN_SUCCESS) {
    return refused(code);
  }
  std::vector<std::string> texts;
  std::size_t longest = 0;
  for (unsigned i = 0; i <= size; ++i) {
    const char* const text = room.data() + static_cast<std::size_t>(i) * kWidth;
    const std::size_t length = strnlen(text, kWidth);
    if (!isCleared(text + length, text + kWidth) || (length == 0) != (i == size)) {
      return fault("texts not cleared");
    }
    if (i < size) {
      texts.emplace_back(text, length);
      longest = std::max(longest, length);
    }
  }
  const unsigned tight = static_cast<unsigned>(longest);
  if (size > 0 && (get(room.data(), tight, size) != LUMO_RETURN_INSUFFICIENT_SIZE ||
                   get(room.data(), tight + 1, size) != LUMO_RETURN_SUCCESS)) {
    return fault("width is wrong");
  }
  if (size > 1 && get(room.data(), kWidth, size - 1) != tooFew) {
    return fault("fits into less room than it needs");
  }
  return join(texts);
}

std::string askStates(const Subject& on, LumoReturn (*function)(LumoVpu*, unsigned*, unsigned)) {
  std::vector<unsigned> states(kStates, kMark);
  const LumoReturn code = function(on, states.data(), kStates);
  if (code != LUMO_RETURN_SUCCESS) {
    const bool wrote = std::ranges::any_of(states, [](unsigned state) { return state != kMark; });
    return wrote ? fault(refused(code) + ", but wrote") : refused(code);
  }
  const auto end = std::ranges::find(states, LUMO_NOT_AVAILABLE);
  if (std::any_of(end, states.end(), [](unsigned state) { return state != LUMO_NOT_AVAILABLE; })) {
    return fault("state behind the last one");
  }
  // A shorter buffer has the first ones.
  std::vector<unsigned> few(3, kMark);
  if (function(on, few.data(), 2) != LUMO_RETURN_SUCCESS || few[2] != kMark ||
      !std::equal(few.begin(), few.end() - 1, states.begin())) {
    return fault("short list is wrong");
  }
  std::string text;
  for (auto state = states.begin(); state != end; ++state) {
    text += std::to_string(*state);
  }
  return text.empty() ? "empty" : text;
}

std::string askPages(const Subject& on, unsigned cause) {
  unsigned counts[2] = {};
  const LumoReturn code = lumoMemoryGetRetiredPagesCount(on, &counts[0], &counts[1]);
  const unsigned size = code == LUMO_RETURN_SUCCESS ? counts[cause] : 0;
  std::vector<Marked<LumoRetiredPage>> pages(size + 2);
  const LumoReturn got = lumoMemoryGetRetiredPages(on, cause, size + 1, &pages.front().value);
  if (got != code || !pages.back().isUntouched()) {
    return fault("counted " + std::to_string(size) + ", but " + refused(got));
  }
  if (code != LUMO_RETURN_SUCCESS) {
    return refused(code);
  }
  if (size > 1 &&
      lumoMemoryGetRetiredPages(on, cause, size - 1, &pages.front().value) != LUMO_RETURN_INSUFFICIENT_SIZE) {
    return fault("fits into less room than it needs");
  }
  lumoMemoryGetRetiredPages(on, cause, size + 1, &pages.front().value);
  std::vector<std::string> rows;
  for (unsigned i = 0; i < size; ++i) {
    std::ostringstream text;
    print(text, pages[i].value);
    rows.push_back(text.str());
  }
  return join(rows);
}

std::string askEvents(const std::function<LumoReturn(LumoEventData*, unsigned, unsigned*)>& read) {
  constexpr unsigned kMost = 3;
  std::vector<Marked<LumoEventData>> events(kMost + 1);
  Marked<unsigned> count;
  const LumoReturn code = read(&events.front().value, kMost, &count.value);
  if (code != LUMO_RETURN_SUCCESS) {
    const bool wrote = !events.front().isUntouched() || !count.isUntouched();
    return wrote ? fault(refused(code) + ", but wrote") : refused(code);
  }
  if (count.value > kMost || !events.back().isUntouched()) {
    return fault("wrote behind the last record");
  }
  std::vector<std::string> rows;
  for (unsigned i = 0; i < count.value; ++i) {
    std::ostringstream text;
    print(text, events[i].value);
    rows.push_back(text.str());
  }
  return join(rows);
}

std::string askDevicesAtLevel(const Subject& on, unsigned level) {
  unsigned size = 0;
  const LumoReturn code = lumoDeviceCountDeviceByTopologyLevel(on, level, &size);
  std::vector<LumoDevice*> devices(size + 1);
  const LumoReturn got = lumoDeviceGetDeviceByTopologyLevel(on, level, size + 1, devices.data());
  if (got != code) {
    return fault("counted " + std::to_string(size) + ", but " + refused(got));
  }
  if (code != LUMO_RETURN_SUCCESS) {
    return refused(code);
  }
  if (lumoDeviceGetDeviceByTopologyLevel(on, level, size, devices.data()) != LUMO_RETURN_INSUFFICIENT_SIZE) {
    return fault("fits into less room than it needs");
  }
  std::vector<std::string> numbers;
  for (unsigned i = 0; i < size; ++i) {
    std::ostringstream text;
    print(text, devices[i]);
    numbers.push_back(text.str());
  }
  return join(numbers);
}

}  // namespace tolk_test
