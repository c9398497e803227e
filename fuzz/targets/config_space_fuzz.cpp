#include <algorithm>
#include <array>

#include "common/pcie_config_space.h"
#include "support/drained_log.h"

// The configuration space of a PCI function, as the driver copies it out.

namespace {

using kelp::PcieInfo;
using tolk_fuzz::expect;

template <class Value, std::size_t N>
bool isOneOf(const kelp::Stated<Value>& stated, const std::array<Value, N>& values) {
  return !stated.ok() || std::ranges::find(values, stated.value()) != values.end();
}

void checkLink(const kelp::Stated<float>& speed, const kelp::Stated<unsigned>& gen,
               const kelp::Stated<unsigned>& width) {
  constexpr std::array kSpeeds{0.0F, 2.5F, 5.0F, 8.0F, 16.0F, 32.0F, 64.0F};
  constexpr std::array kWidths{0U, 1U, 2U, 4U, 8U, 16U};
  expect(speed.ok() && isOneOf(speed, kSpeeds), "a speed is one of the bus");
  expect(isOneOf(width, kWidths), "a width is one of the bus");
  expect(!gen.ok() || gen.value() <= 7, "a generation is one of the bus");
  expect(gen.ok() == width.ok(), "a link has both or neither");
  if (gen.ok() && gen.value() != 7) {
    expect(kSpeeds[gen.value()] == speed.value(), "generation and speed tell the same");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  const PcieInfo info = kelp::PcieConfigSpace({data, size}).decode();
  checkLink(info.maxLinkSpeed, info.maxLinkGen, info.maxLinkWidth);
  checkLink(info.curLinkSpeed, info.curLinkGen, info.curLinkWidth);
  expect(info.vendorId.ok() && info.vendorId.value() <= 0xFFFF, "an id has 16 bits");
  return 0;
}
