#include "support/drained_log.h"
#include "support/driver_ways.h"
#include "support/fuzzed_driver.h"

// Everything that the kernel driver answers: what is asked (see driver_ways.h), and between that the answers
// (see fuzzed_driver.h), in the order in which they are needed.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::DrainedLog log;
  tolk_fuzz::FuzzInput input(data, size);
  const tolk_fuzz::FuzzedDriver driver(input);
  tolk_fuzz::tryDriver(input);
  return 0;
}
