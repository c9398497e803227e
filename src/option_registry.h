#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "option_spec.h"

namespace tolk {

/// A set of names of the grammar, one bit each.
using OptionMask = std::uint64_t;

/// Whether `all` has every bit of `part`.
constexpr bool contains(OptionMask all, OptionMask part) {
  return (all & part) == part;
}

/// Result of registering or of parsing; the text of each is in the parser.
enum class ParseCode : int {
  kSuccess = 0,
  kBadRegistration = 1,
  kNamelessOption = 2,
  kWrongCombination = 3,
  kWrongValue = 4,
  kMissingValue = 5,
  kUnknownInput = 6,
  kUnknownError = 7,
};

/// A table of rows in the form that the parser asks: every option and sub-command is one bit, and a row
/// is the set of bits that must be given, its key, with the set of those that may be given besides.
///
/// Built once per run from a table of the program's own, whose options and texts must outlive it.
class OptionRegistry {
 public:
  struct Name {
    std::string_view text;
    OptionMask bit;
  };
  struct Row {
    OptionMask key;
    OptionMask optional;
    CommandFactory factory;
  };

  OptionRegistry();

  /// The code of the first row that contradicts itself or an earlier one, else kSuccess.
  ParseCode registerTable(std::span<const CommandRow> table);

  /// All short names, long names and sub-commands, in the order of their registration. A name that
  /// stands for several bits is there several times.
  std::span<const Name> names() const { return names_; }

  bool isSubCommand(OptionMask bit) const { return contains(subCommandMask_, bit); }
  bool isMandatory(OptionMask bit) const { return contains(mandatoryMask_, bit); }
  bool isOptional(OptionMask bit) const { return contains(optionalMask_, bit); }

  /// The option of a bit that is no sub-command's.
  const OptionSpec& option(OptionMask bit) const;

  /// The row with exactly this key, or null.
  const Row* rowOf(OptionMask key) const;

  /// Whether some row needs all of these bits, and perhaps more.
  bool leadsToRow(OptionMask bits) const;

 private:
  struct Option {
    const OptionSpec* spec;
    OptionMask bit;
  };

  ParseCode registerRow(const CommandRow& row);
  OptionMask takeBit();
  OptionMask subCommandBit(std::string_view subCommand);
  ParseCode optionBit(const OptionSpec& spec, OptionMask& bit);

  std::vector<Name> names_;
  std::vector<Option> options_;
  std::vector<Row> rows_;
  OptionMask nextBit_ = 1;
  OptionMask subCommandMask_ = 0;
  OptionMask mandatoryMask_ = 0;
  OptionMask optionalMask_ = 0;
};

}  // namespace tolk
