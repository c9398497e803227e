#include "value_reader.h"

#include <array>

#include "fault_spec.h"
#include "hints.h"

namespace {

enum class Type { kNUMBER, kARRAY, kTEXT, kBYTES };

struct Definition {
  std::string_view name;
  Type type;
  std::string_view keys;
};

constexpr Definition kDefinitions[] = {
#define SIM_VALUE(id, name, type, keys) {name, Type::k##type, keys},
#include "sim_values.def"
#undef SIM_VALUE
};

// Members that make an object one value.
constexpr std::array<std::string_view, 5> kSpecialKeys{"status", "errno", "steps", "cycle", "hex"};

std::string packed(const std::vector<uint32_t>& numbers) {
  std::string bytes;
  for (const uint32_t number : numbers) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  }
  return bytes;
}

Cell readCell(const JsonCursor& place, Type type);

// "2.1.5" as firmware counts: two digits for each part behind a point.
std::optional<uint64_t> versionFromText(const std::string& text) {
  unsigned major = 0;
  unsigned minor = 0;
  unsigned patch = 0;
  int used = 0;
  if (std::sscanf(text.c_str(), "%u.%u.%u%n", &major, &minor, &patch, &used) != 3) return std::nullopt;
  if (static_cast<size_t>(used) != text.size() || minor > 99 || patch > 99) return std::nullopt;
  return uint64_t{major} * 10000 + minor * 100 + patch;
}

uint64_t readNumber(const JsonCursor& place) {
  if (place.value().is_string()) {
    if (const auto version = versionFromText(place.text())) return *version;
  }
  return place.number();
}

Cell readSpecial(const JsonCursor& place, Type type) {
  Cell cell;
  place.allowKeys({kSpecialKeys.begin(), kSpecialKeys.end()});
  if (place.value().size() != 1)
    place.failWith("only one of status, errno, steps, cycle and hex can be given");
  if (const auto status = place.find("status")) {
    cell.kind = SIM_CELL_STATUS;
    cell.number = status->whole(1, 255);
  } else if (const auto error = place.find("errno")) {
    const auto number = errnoFromName(error->text());
    if (!number) error->fail("the name of an errno, such as \"EIO\"");
    cell.kind = SIM_CELL_ERRNO;
    cell.number = static_cast<uint64_t>(*number);
  } else if (const auto hex = place.find("hex")) {
    if (type != Type::kTEXT) hex->failWith("only a text can be given by its bytes");
    cell.kind = SIM_CELL_BLOB;
    cell.blob = bytesFromHex(*hex);
  } else {
    const auto cycle = place.find("cycle");
    const JsonCursor steps = cycle ? *cycle : place.require("steps");
    cell.kind = SIM_CELL_STEPS;
    cell.cycle = cycle.has_value();
    for (const JsonCursor& step : steps.elements()) {
      cell.steps.push_back(readCell(step, type));
      if (cell.steps.back().kind == SIM_CELL_STEPS) step.failWith("a step cannot have steps of its own");
    }
    if (cell.steps.empty()) steps.fail("at least one step");
  }
  return cell;
}

Cell readArray(const JsonCursor& place) {
  std::vector<uint32_t> numbers;
  for (const JsonCursor& element : place.elements()) {
    const bool isMissing = element.value() == "n/a";
    const uint64_t number = isMissing ? 0xFFFFFFFF : readNumber(element);
    if (number > 0xFFFFFFFF) element.fail("a number of 32 bits");
    numbers.push_back(static_cast<uint32_t>(number));
  }
  Cell cell;
  cell.kind = SIM_CELL_BLOB;
  cell.blob = packed(numbers);
  return cell;
}

Cell readCell(const JsonCursor& place, Type type) {
  const nlohmann::json& value = place.value();
  Cell cell;
  if (value == "n/a") {
    cell.kind = SIM_CELL_NA;
  } else if (value.is_object()) {
    cell = readSpecial(place, type);
  } else if (type == Type::kTEXT || type == Type::kBYTES) {
    cell.kind = SIM_CELL_BLOB;
    cell.blob = type == Type::kTEXT ? place.text() : bytesFromHex(place);
  } else if (type == Type::kARRAY && value.is_array()) {
    cell = readArray(place);
  } else if (value.is_array()) {
    cell.kind = SIM_CELL_STEPS;
    for (const JsonCursor& step : place.elements()) {
      if (step.value().is_array()) step.fail("a number");
      cell.steps.push_back(readCell(step, type));
    }
    if (cell.steps.empty()) place.fail("at least one step");
  } else {
    cell.number = readNumber(place);
  }
  return cell;
}

// "3" or "1,0": one number for each letter of `keys`.
uint64_t parseKey(const JsonCursor& place, std::string_view text, std::string_view keys) {
  uint64_t key = 0;
  std::string_view rest = text;
  for (size_t i = 0; i < keys.size(); ++i) {
    const std::string_view part = rest.substr(0, rest.find(','));
    const bool isLast = part.size() == rest.size();
    const auto number = numberFromText(part);
    if (!number || *number > 0xFFFF || isLast != (i + 1 == keys.size())) {
      place.failWith("the key must be " + std::to_string(keys.size()) +
                     (keys.size() == 1 ? " number" : " numbers with commas between") + "; found \"" +
                     std::string(text) + "\"");
    }
    rest.remove_prefix(isLast ? rest.size() : part.size() + 1);
    const int shift = keys[i] == 'r' ? 48 : 16 * (keys[i] - 'a');
    key |= *number << shift;
  }
  return key;
}

void readKeyed(const JsonCursor& place, const Definition& definition, uint16_t value,
               const nlohmann::json* fallback, CellMap& cells) {
  const nlohmann::json& json = place.value();
  if (json.is_object() && !isSingleValue(json)) {
    for (const auto& [text, one] : place.members()) {
      const uint64_t key = parseKey(one, text, definition.keys);
      if (!one.value().is_null()) cells[{value, key}] = readCell(one, definition.type);
    }
    return;
  }
  const Cell cell = readCell(place, definition.type);
  const bool spreads = fallback && fallback->is_object() && !isSingleValue(*fallback);
  if (!spreads || cell.kind == SIM_CELL_STATUS || cell.kind == SIM_CELL_ERRNO) {
    cells[{value, SIM_ANY_KEY}] = cell;
    return;
  }
  for (const auto& member : fallback->items()) {
    cells[{value, parseKey(place, member.key(), definition.keys)}] = cell;
  }
}

uint16_t indexOf(const JsonCursor& place, std::string_view name) {
  for (uint16_t i = 0; i < SIM_VALUE_COUNT; ++i) {
    if (kDefinitions[i].name == name) return i;
  }
  place.failWith("unknown value" + hintFor(name, valueNames()));
}

}  // namespace

std::string bytesFromHex(const JsonCursor& place) {
  const std::string text = place.text();
  std::string bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    const auto number = numberFromText("0x" + text.substr(i, 2));
    if (!number || text.size() % 2 != 0) place.fail("pairs of hexadecimal digits");
    bytes += static_cast<char>(*number);
  }
  return bytes;
}

const std::vector<std::string_view>& valueNames() {
  static const std::vector<std::string_view> kNames = [] {
    std::vector<std::string_view> names;
    for (const Definition& definition : kDefinitions) names.push_back(definition.name);
    return names;
  }();
  return kNames;
}

bool isSingleValue(const nlohmann::json& value) {
  if (!value.is_object()) return true;
  for (const std::string_view key : kSpecialKeys) {
    if (value.contains(key)) return true;
  }
  return false;
}

void readValues(const JsonCursor& values, const nlohmann::json& defaults, CellMap& cells) {
  for (const auto& [name, place] : values.members()) {
    const uint16_t value = indexOf(place, name);
    if (place.value().is_null()) continue;
    const Definition& definition = kDefinitions[value];
    if (definition.keys.empty()) {
      cells[{value, 0}] = readCell(place, definition.type);
    } else {
      const auto fallback = defaults.find(name);
      readKeyed(place, definition, value, fallback == defaults.end() ? nullptr : &*fallback, cells);
    }
  }
}

void checkValueNames(const JsonCursor& values) {
  for (const auto& [name, place] : values.members()) indexOf(place, name);
}

void readValue(const JsonCursor& place, SimValue value, uint64_t key, CellMap& cells) {
  cells[{static_cast<uint16_t>(value), key}] = readCell(place, kDefinitions[value].type);
}

void setNumber(CellMap& cells, SimValue value, uint64_t number, uint64_t key) {
  cells[{static_cast<uint16_t>(value), key}] = Cell{.number = number};
}

void setText(CellMap& cells, SimValue value, std::string text, uint64_t key) {
  cells[{static_cast<uint16_t>(value), key}] = Cell{.kind = SIM_CELL_BLOB, .blob = std::move(text)};
}

void setArray(CellMap& cells, SimValue value, const std::vector<uint32_t>& numbers, uint64_t key) {
  cells[{static_cast<uint16_t>(value), key}] = Cell{.kind = SIM_CELL_BLOB, .blob = packed(numbers)};
}
