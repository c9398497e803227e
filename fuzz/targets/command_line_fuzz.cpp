#include <algorithm>
#include <stdexcept>

#include "command_error.h"
#include "command_parser.h"
#include "command_table.h"
#include "support/fuzz_input.h"
#include "support/kept_options.h"
#include "support/property.h"

// The arguments, joined by blanks, behind a byte that says whose table: the full one or a guest's.

namespace {

using tolk::ParsedOptions;
using tolk_fuzz::expect;

/// What a command line comes to: options, or words of refusal.
struct Outcome {
  ParsedOptions options;
  std::string refusal;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome parse(std::span<const tolk::CommandRow> table, const std::string& text) {
  tolk::CommandParser parser(text);
  expect(parser.registerTable(table) == 0, "the table is sound");
  std::shared_ptr<tolk::Step> step;
  try {
    step = parser.work();
  } catch (const std::out_of_range&) {
    return {.options = {}, .refusal = "an interval that no number holds"};
  }
  if (const auto kept = std::dynamic_pointer_cast<tolk_fuzz::KeptOptions>(step)) {
    return {.options = kept->options, .refusal = {}};
  }
  const auto error = std::dynamic_pointer_cast<tolk::CommandError>(step);
  expect(error != nullptr && !error->message.empty(), "what is refused has a message");
  return {.options = {}, .refusal = error->message};
}

/// The same tokens with one blank behind each.
std::string reprint(const std::string& text, std::size_t& tokens) {
  constexpr const char* kSeparators = " =";
  std::string again;
  for (auto begin = text.find_first_not_of(kSeparators); begin != std::string::npos;) {
    const auto end = std::min(text.find_first_of(kSeparators, begin), text.size());
    again += text.substr(begin, end - begin) + ' ';
    begin = text.find_first_not_of(kSeparators, end);
    ++tokens;
  }
  return again;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tolk_fuzz::FuzzInput input(data, size);
  const auto table =
      input.take<std::uint8_t>() % 2 == 0 ? tolk::fullCommandTable() : tolk::guestCommandTable();
  const std::string text = input.takeText();
  const Outcome outcome = parse(table, text);
  std::size_t tokens = 0;
  expect(parse(table, reprint(text, tokens)) == outcome, "a line that is printed again means the same");
  if (!outcome.refusal.empty()) return 0;
  expect(outcome.options.size() <= tokens, "no option comes from nowhere");
  for (const auto& [key, values] : outcome.options) {
    expect(!key.empty(), "an option has a name");
    for (const auto& value : values)
      expect(text.find(value) != std::string::npos, "a value is what is typed");
  }
  return 0;
}
