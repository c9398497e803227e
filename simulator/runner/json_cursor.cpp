#include "json_cursor.h"

#include <charconv>
#include <ctime>

#include "hints.h"
#include "host_error.h"

namespace {

// Short enough for a message.
std::string shown(const nlohmann::json& value) {
  std::string text = value.dump();
  if (text.size() > 60) text = text.substr(0, 57) + "...";
  return text;
}

bool isPlainKey(std::string_view key) {
  return key.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-") ==
         std::string_view::npos;
}

}  // namespace

JsonCursor::JsonCursor(const nlohmann::json& value, std::string file, std::string path)
    : place(&value), fileName(std::move(file)), keyPath(std::move(path)) {}

std::optional<JsonCursor> JsonCursor::find(std::string_view key) const {
  if (!place->is_object()) fail("an object");
  const auto member = place->find(key);
  if (member == place->end()) return std::nullopt;
  std::string path = keyPath;
  if (isPlainKey(key)) {
    path += (path.empty() ? "" : ".") + std::string(key);
  } else {
    path += "[\"" + std::string(key) + "\"]";
  }
  return JsonCursor(*member, fileName, std::move(path));
}

JsonCursor JsonCursor::require(std::string_view key) const {
  if (auto member = find(key)) return *member;
  failWith("the key \"" + std::string(key) + "\" is missing");
}

std::vector<std::pair<std::string, JsonCursor>> JsonCursor::members() const {
  if (!place->is_object()) fail("an object");
  std::vector<std::pair<std::string, JsonCursor>> all;
  for (auto member = place->begin(); member != place->end(); ++member) {
    all.emplace_back(member.key(), *find(member.key()));
  }
  return all;
}

std::vector<JsonCursor> JsonCursor::elements() const {
  if (!place->is_array()) fail("an array");
  std::vector<JsonCursor> all;
  for (size_t i = 0; i < place->size(); ++i) {
    all.emplace_back((*place)[i], fileName, keyPath + "[" + std::to_string(i) + "]");
  }
  return all;
}

void JsonCursor::allowKeys(const std::vector<std::string_view>& keys) const {
  if (!place->is_object()) fail("an object");
  for (auto member = place->begin(); member != place->end(); ++member) {
    bool known = false;
    for (const std::string_view key : keys) known = known || key == member.key();
    if (!known) find(member.key())->failWith("unknown key" + hintFor(member.key(), keys));
  }
}

std::string JsonCursor::text() const {
  if (!place->is_string()) fail("text");
  return place->get<std::string>();
}

bool JsonCursor::flag() const {
  if (!place->is_boolean()) fail("true or false");
  return place->get<bool>();
}

uint64_t JsonCursor::whole(uint64_t lowest, uint64_t highest) const {
  const std::string expected =
      "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
  if (!place->is_number_integer() ||
      (place->is_number_integer() && !place->is_number_unsigned() && place->get<int64_t>() < 0)) {
    fail(expected);
  }
  const auto number = place->get<uint64_t>();
  if (number < lowest || number > highest) fail(expected);
  return number;
}

uint64_t JsonCursor::number() const {
  if (place->is_number_unsigned()) return place->get<uint64_t>();
  if (place->is_number_integer()) return static_cast<uint64_t>(place->get<int64_t>());
  if (place->is_string()) {
    if (const auto number = numberFromText(place->get_ref<const std::string&>())) return *number;
  }
  fail("a whole number, or a text such as \"0x1f\" or \"16GiB\"");
}

int64_t JsonCursor::moment() const {
  if (place->is_number_unsigned()) return static_cast<int64_t>(whole(0, uint64_t{1} << 40));
  std::tm parts{};
  const std::string written = place->is_string() ? text() : std::string();
  const char* const end = strptime(written.c_str(), "%Y-%m-%d %H:%M:%S", &parts);
  if (!end || *end != '\0') fail("seconds since the epoch, or UTC as \"2025-11-20 17:40:12\"");
  return timegm(&parts);
}

std::string JsonCursor::where() const {
  return fileName + (keyPath.empty() ? "" : ": " + keyPath) + ": ";
}

void JsonCursor::fail(const std::string& expected) const {
  throw HostError(where() + "expected " + expected + "; found " + shown(*place));
}

void JsonCursor::failWith(const std::string& what) const {
  throw HostError(where() + what);
}

std::optional<uint64_t> numberFromText(std::string_view text) {
  static constexpr struct {
    std::string_view name;
    int shift;
  } kUnits[] = {{"KiB", 10}, {"MiB", 20}, {"GiB", 30}};
  int base = 10;
  int shift = 0;
  if (text.starts_with("0x")) {
    base = 16;
    text.remove_prefix(2);
  } else {
    for (const auto& unit : kUnits) {
      if (!text.ends_with(unit.name)) continue;
      shift = unit.shift;
      text.remove_suffix(unit.name.size());
    }
  }
  uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  if (shift != 0 && number >> (64 - shift) != 0) return std::nullopt;
  return number << shift;
}
