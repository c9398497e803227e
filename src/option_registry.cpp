#include "option_registry.h"

#include <algorithm>

namespace tolk {

namespace {

/// Room for the tables that the tool has, so that registering them allocates three times.
constexpr std::size_t kUsualNames = 112;
constexpr std::size_t kUsualOptions = 56;
constexpr std::size_t kUsualRows = 32;

}  // namespace

OptionRegistry::OptionRegistry() {
  names_.reserve(kUsualNames);
  options_.reserve(kUsualOptions);
  rows_.reserve(kUsualRows);
}

ParseCode OptionRegistry::registerTable(std::span<const CommandRow> table) {
  for (const auto& row : table) {
    if (const auto code = registerRow(row); code != ParseCode::kSuccess) return code;
  }
  return ParseCode::kSuccess;
}

ParseCode OptionRegistry::registerRow(const CommandRow& row) {
  OptionMask must = subCommandBit(row.subCommand);
  OptionMask may = 0;
  OptionMask bit = 0;
  for (const OptionSpec* spec : row.mandatory) {
    if (const auto code = optionBit(*spec, bit); code != ParseCode::kSuccess) return code;
    if (contains(must, bit)) return ParseCode::kBadRegistration;
    must |= bit;
    mandatoryMask_ |= bit;
  }
  for (const OptionSpec* spec : row.optional) {
    if (const auto code = optionBit(*spec, bit); code != ParseCode::kSuccess) return code;
    if (contains(must | may, bit)) return ParseCode::kBadRegistration;
    may |= bit;
    optionalMask_ |= bit;
  }
  if (const Row* known = rowOf(must)) {
    return known->optional == may ? ParseCode::kSuccess : ParseCode::kBadRegistration;
  }
  rows_.push_back({must, may, row.factory});
  return ParseCode::kSuccess;
}

OptionMask OptionRegistry::takeBit() {
  const OptionMask bit = nextBit_;
  nextBit_ <<= 1;
  return bit;
}

OptionMask OptionRegistry::subCommandBit(std::string_view subCommand) {
  const auto known = std::ranges::find(names_, subCommand, &Name::text);
  if (known != names_.end()) return known->bit;
  const OptionMask bit = takeBit();
  names_.push_back({subCommand, bit});
  subCommandMask_ |= bit;
  return bit;
}

ParseCode OptionRegistry::optionBit(const OptionSpec& spec, OptionMask& bit) {
  if (spec.key().empty()) return ParseCode::kNamelessOption;

  // Rows share their options, so the address decides nearly always and no text is compared.
  auto known = std::ranges::find(options_, &spec, &Option::spec);
  if (known == options_.end()) {
    known = std::ranges::find_if(options_, [&spec](const Option& option) {
      return option.spec->longName == spec.longName && option.spec->shortName == spec.shortName;
    });
  }
  if (known != options_.end()) {
    bit = known->bit;
    return known->spec->valuePattern == spec.valuePattern ? ParseCode::kSuccess : ParseCode::kBadRegistration;
  }

  bit = takeBit();
  options_.push_back({&spec, bit});
  for (const auto name : {spec.shortName, spec.longName}) {
    if (!name.empty()) names_.push_back({name, bit});
  }
  return ParseCode::kSuccess;
}

const OptionSpec& OptionRegistry::option(OptionMask bit) const {
  return *std::ranges::find(options_, bit, &Option::bit)->spec;
}

const OptionRegistry::Row* OptionRegistry::rowOf(OptionMask key) const {
  const auto found = std::ranges::find(rows_, key, &Row::key);
  return found == rows_.end() ? nullptr : &*found;
}

bool OptionRegistry::leadsToRow(OptionMask bits) const {
  return std::ranges::any_of(rows_, [bits](const Row& row) { return contains(row.key, bits); });
}

}  // namespace tolk
