#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "option_registry.h"
#include "parsed_options.h"
#include "step.h"

namespace tolk {

/// First step of a run: splits the command line into tokens, checks them against the registered rows
/// and makes the command of the one row that they match.
///
/// A name that several options share takes the meaning that the row reached so far allows, so the order
/// of options matters. What fits no row gives a CommandError with one of the texts of the parser.
class CommandParser : public Step {
 public:
  /// @param text the arguments, joined by blanks
  explicit CommandParser(std::string text);
  CommandParser(const CommandParser&) = delete;
  CommandParser& operator=(const CommandParser&) = delete;

  /// 0, or the code of the first failing row. The table must outlive the parser.
  int registerTable(std::span<const CommandRow> table);

  std::shared_ptr<Step> work() override;

 private:
  /// What a token can be taken for; an option may be mandatory in one row and optional in another.
  enum Kind : unsigned { kValue = 0, kSubCommand = 1, kMandatory = 2, kOptional = 4 };

  /// The texts belong to the command line or to the table.
  struct ParsedRecord {
    std::string_view name;
    OptionMask mask = 0;
    unsigned kind = kValue;
    std::string_view valuePattern = {};
    std::vector<std::string_view> values = {};

    bool isOption() const { return (kind & (kMandatory | kOptional)) != 0; }
  };

  std::vector<std::string_view> tokenise() const;
  ParseCode parse(std::span<const std::string_view> tokens);
  std::vector<ParsedRecord> candidatesFor(std::string_view token) const;
  ParseCode resolve(std::vector<ParsedRecord>& candidates, ParsedRecord*& chosen) const;
  ParseCode checkValues();
  void enterOptions();
  std::shared_ptr<Step> valueError(const char* format) const;

  const std::string command_;
  OptionRegistry registry_;

  std::vector<ParsedRecord> records_;
  std::vector<std::string_view> seenTokens_;  ///< as typed, one per record
  ParsedOptions parsedOptions_;
  OptionMask matchedMandatory_ = 0;  ///< the sub-command too
  OptionMask matchedOptional_ = 0;
};

}  // namespace tolk
