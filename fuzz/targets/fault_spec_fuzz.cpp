#include "fault_spec.h"

#include "host_error.h"
#include "sim_model.h"
#include "support/property.h"

// A fault of the simulated host, as its user writes it.

using tolk_fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string written(reinterpret_cast<const char*>(data), size);
  try {
    const FaultSpec spec = parseFault(written);
    expect(spec.fault.first >= 1 && spec.fault.first <= spec.fault.last, "a fault concerns some access");
    expect(spec.fault.target <= SIM_FAULT_MOVE, "a fault has one of the targets");
    expect(spec.pattern.size() + spec.text.size() <= written.size(),
           "the texts are parts of what is written");
  } catch (const HostError& error) {
    expect(std::string_view(error.what()).starts_with("fault \""), "what is refused is named");
  }
  return 0;
}
