#include "debug_log_reader.h"

#include "rusk/log_cipher.h"
#include "support/fuzz_input.h"
#include "support/property.h"

// A debug log as it comes with a fault report. Behind it stands one more record, as if the next run had
// appended a line, which is the input's beginning.

using tolk_fuzz::expect;

namespace {

constexpr std::size_t kLongestLine = 40;

bool endsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// A line as it comes back: the zeros that it ends in are taken for filling as far as a block has room.
std::string withoutEndZeros(std::string line) {
  while (line.ends_with('\0')) line.pop_back();
  return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tolk_fuzz::FuzzInput input(data, size);
  std::string log = input.takeText();
  const std::string line = withoutEndZeros(log.substr(0, kLongestLine));
  const std::string record = rusk::encipherLine(line) + '\n';
  log += record;
  DebugLogReader reader(log);
  std::size_t offset = 0;
  std::optional<DebugLogPiece> last;
  while (auto piece = reader.next()) {
    expect(piece->offset == offset && piece->bytes > 0, "the pieces follow one another");
    expect(!piece->line || piece->line->size() < piece->bytes, "a line is shorter than its record");
    offset += piece->bytes;
    last = std::move(piece);
  }
  expect(offset == log.size(), "the pieces are all of the log");
  expect(last.has_value() && (!last->line || last->bytes > record.size() || endsIn(*last->line, line)),
         "the last line is the one that was appended");
  return 0;
}
