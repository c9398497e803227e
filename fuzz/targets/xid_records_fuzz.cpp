#include <array>
#include <cstring>
#include <limits>

#include "event_records.h"
#include "support/drained_log.h"
#include "support/fuzz_input.h"
#include "support/memory_file.h"

// The file of stored faults: how many are wanted, then the file.

namespace {

using tolk_fuzz::expect;

constexpr std::array kWanted{0U, 1U, 2U, 3U, 100U, std::numeric_limits<unsigned>::max()};
constexpr std::size_t kHeaderSize = 32;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  static tolk_fuzz::MemoryFile file;
  tolk_fuzz::FuzzInput input(data, size);
  const unsigned wanted = kWanted[input.take<std::uint8_t>() % kWanted.size()];
  const std::string content = input.takeText();
  file.write(content);
  LumoReturn status{};
  const auto records = lumo::readXidRecords(file.path(), wanted, &status);
  if (status != LUMO_RETURN_SUCCESS) {
    expect(status == LUMO_RETURN_UNKNOWN_ERROR && records.empty(), "a file that is refused has no records");
    return 0;
  }
  const std::size_t bytes = records.size() * sizeof(LumoXidRecord);
  expect(records.size() <= wanted && kHeaderSize + bytes <= content.size(),
         "no more records than are wanted and there");
  expect(bytes == 0 || std::memcmp(records.data(), content.data() + content.size() - bytes, bytes) == 0,
         "the records are the last of the file");
  return 0;
}
