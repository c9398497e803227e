#include <array>

#include "common/efuse/efuse.h"
#include "support/drained_log.h"
#include "support/fuzz_input.h"

// The bits that are burnt into a chip: its family, where the bits start, how many there are said to be, the
// words that came.

namespace {

using kelp::DevArch;
using tolk_fuzz::expect;

constexpr unsigned kFields = 16;

void readEveryField(const kelp::EfuseBase& bits) {
  for (unsigned id = 0; id < kFields; ++id) {
    const auto field = bits.getField(id);
    if (!field.ok()) continue;
    const unsigned width = field.value().width;
    expect(field.value().words.size() == 1 && width < 64, "a field fits in a word");
    expect(field.value().words.front() >> width == 0, "a field has no bits behind its width");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  tolk_fuzz::FuzzInput input(data, size);
  const auto arch = DevArch{input.take<std::uint8_t>() % 6U};
  kelp::EfuseData burnt;
  burnt.startBit = input.take<std::uint32_t>();
  burnt.bitCount = input.take<std::uint32_t>();
  while (!input.atEnd()) burnt.words.push_back(input.take<std::uint32_t>());
  readEveryField(kelp::WoldEfuse(burnt));
  readEveryField(kelp::FenEfuse(burnt));
  const auto efuse = kelp::decodeEfuse(arch, burnt);
  if (!efuse.ok()) return 0;
  expect(arch != DevArch::kUnknown && arch < DevArch::kTor1, "only some families have an identity");
  expect(efuse.value().chipField1.value() < 1U << 12, "chip field 1 has 12 bits");
  expect(efuse.value().chipField0.value() < 1UL << 42, "chip field 0 has 42 bits");
  expect(efuse.value().chipField23.value() < 1U << 10, "chip fields 2 and 3 have 10 bits");
  return 0;
}
