#include "command_parser.h"

#include <algorithm>
#include <array>
#include <utility>

#include "command_error.h"
#include "value_pattern.h"

namespace tolk {

namespace {

constexpr std::array<const char*, 8> kCodeTexts{
    "Success",
    "Error: illegal option for registration.",
    "Error: option's long name and short name can't be empty at the same time.",
    "Error: input wrong option combination. Please run 'orvane-tolk -h' for help.",
    "Error: input wrong value type for a option. Please run 'orvane-tolk -h' for help.",
    "Error: an option need value but not input. Please run 'orvane-tolk -h' for help.",
    "Error: input is unknow. Please run 'orvane-tolk -h' for help.",  // sic
    "Error: unkown error.  Please run 'orvane-tolk -h' for help.",    // sic
};

constexpr const char* kMissingValue = "Missing value for '%s' options. Please run 'orvane-tolk -h' for help.";

/// Rows without a sub-command stand under this word, which nobody types.
constexpr std::string_view kNoSubCommand = "";

const char* textOf(ParseCode code) {
  const auto number = static_cast<std::size_t>(code);
  return number < kCodeTexts.size() ? kCodeTexts[number] : "";
}

std::string joined(const std::vector<std::string_view>& values) {
  std::string text;
  for (const auto value : values) {
    if (!text.empty()) text += ' ';
    text += value;
  }
  return text;
}

}  // namespace

CommandParser::CommandParser(std::string text) : command_(std::move(text)) {}

int CommandParser::registerTable(std::span<const CommandRow> table) {
  return static_cast<int>(registry_.registerTable(table));
}

std::shared_ptr<Step> CommandParser::work() {
  records_.clear();
  seenTokens_.clear();
  parsedOptions_.clear();
  matchedMandatory_ = 0;
  matchedOptional_ = 0;

  const auto code = parse(tokenise());
  if (code == ParseCode::kWrongValue) return valueError(kIllegalValue);
  if (code == ParseCode::kMissingValue) return valueError(kMissingValue);
  if (code != ParseCode::kSuccess) return commandError(textOf(code), ExitCode::kUnsupported);

  const auto* row = registry_.rowOf(matchedMandatory_);
  return row == nullptr ? nullptr : row->factory(parsedOptions_);
}

std::shared_ptr<Step> CommandParser::valueError(const char* format) const {
  const std::string option(seenTokens_.back());
  return commandError(formatMessage(format, option.c_str()), ExitCode::kUnsupported);
}

/// The tokens behind the empty one. A blank and an equals sign part tokens alike, so no value can hold
/// either.
std::vector<std::string_view> CommandParser::tokenise() const {
  constexpr std::string_view kSeparators = " =";
  const std::string_view text = command_;
  std::vector<std::string_view> tokens{kNoSubCommand};
  for (auto begin = text.find_first_not_of(kSeparators); begin != std::string_view::npos;) {
    const auto end = std::min(text.find_first_of(kSeparators, begin), text.size());
    tokens.push_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kSeparators, end);
  }
  return tokens;
}

ParseCode CommandParser::parse(std::span<const std::string_view> tokens) {
  const bool startsWithWord = tokens.size() > 1 && !candidatesFor(tokens[1]).front().isOption();
  if (startsWithWord) tokens = tokens.subspan(1);

  for (const auto token : tokens) {
    auto candidates = candidatesFor(token);
    ParsedRecord* chosen = nullptr;
    if (const auto code = resolve(candidates, chosen); code != ParseCode::kSuccess) return code;
    if (chosen->kind == kValue) {
      records_.back().values.push_back(token);
      continue;
    }
    if (((matchedMandatory_ | matchedOptional_) & chosen->mask) != 0) return ParseCode::kWrongCombination;
    (chosen->kind == kOptional ? matchedOptional_ : matchedMandatory_) |= chosen->mask;
    records_.push_back(std::move(*chosen));
    seenTokens_.push_back(token);
  }

  const auto code = checkValues();
  if (code == ParseCode::kSuccess) enterOptions();
  return registry_.rowOf(matchedMandatory_) == nullptr ? ParseCode::kWrongCombination : code;
}

/// All that a token can stand for, in the order of the table; never empty.
std::vector<CommandParser::ParsedRecord> CommandParser::candidatesFor(std::string_view token) const {
  std::vector<ParsedRecord> candidates;
  for (const auto& name : registry_.names()) {
    if (name.text != token) continue;
    ParsedRecord record{.name = token, .mask = name.bit};
    if (registry_.isSubCommand(name.bit)) {
      record.kind = kSubCommand;
    } else {
      const auto& option = registry_.option(name.bit);
      record.kind = (registry_.isMandatory(name.bit) ? kMandatory : kValue) |
                    (registry_.isOptional(name.bit) ? kOptional : kValue);
      record.name = option.key();
      record.valuePattern = option.valuePattern;
    }
    candidates.push_back(std::move(record));
  }
  if (candidates.empty()) candidates.push_back({.name = token});
  return candidates;
}

/// Chooses the first candidate that leads on from what was matched so far, and settles its kind.
ParseCode CommandParser::resolve(std::vector<ParsedRecord>& candidates, ParsedRecord*& chosen) const {
  for (auto& candidate : candidates) {
    chosen = &candidate;
    if (candidate.kind == kValue) return records_.empty() ? ParseCode::kUnknownInput : ParseCode::kSuccess;
    if (candidate.kind == kSubCommand) {
      const bool leads = records_.empty() && candidates.size() == 1;
      return leads ? ParseCode::kSuccess : ParseCode::kUnknownInput;
    }
    if ((candidate.kind & kMandatory) != 0 && registry_.leadsToRow(matchedMandatory_ | candidate.mask)) {
      candidate.kind = kMandatory;
      return ParseCode::kSuccess;
    }
    const auto* row = registry_.rowOf(matchedMandatory_);
    if ((candidate.kind & kOptional) != 0 && row != nullptr &&
        contains(row->optional, matchedOptional_ | candidate.mask)) {
      candidate.kind = kOptional;
      return ParseCode::kSuccess;
    }
  }
  return ParseCode::kWrongCombination;
}

/// On a failure the option that failed is the last of `seenTokens_`.
ParseCode CommandParser::checkValues() {
  for (std::size_t index = 0; index < records_.size(); ++index) {
    const auto& record = records_[index];
    if (matchesPattern(record.valuePattern, joined(record.values))) continue;
    seenTokens_.resize(index + 1);
    return record.values.empty() ? ParseCode::kMissingValue : ParseCode::kWrongValue;
  }
  return ParseCode::kSuccess;
}

void CommandParser::enterOptions() {
  for (const auto& record : records_) {
    if (record.name.empty()) continue;
    parsedOptions_[std::string(record.name)].assign(record.values.begin(), record.values.end());
  }
}

}  // namespace tolk
