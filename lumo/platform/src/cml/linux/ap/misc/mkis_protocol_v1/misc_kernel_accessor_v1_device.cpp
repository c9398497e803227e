#include "linux/ap/misc/mkis_protocol_v1/mci_board_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_call.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_device_records.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_gpu_records.h"
#include "linux/environment.h"

namespace kelp::linux_ {

/// The driver takes its time for a sample: it is asked until it says that there is one to fetch.
template <std::derived_from<MciProcessGpuUtil> Record>
KelpReturn exchange(const MiscKernelAccessorV1& accessor, MciCall<Record>& call,
                    const QueryProcGpuUtilParam& param) {
  constexpr int kAsks = 5;
  const auto environment = Environment().getEnvironmentType();
  const auto sendPhase = [&](u32 phase) {
    call = newCall<Record>(accessor);
    call.payload.phase = phase;
    call.payload.environmentType =
        static_cast<u32>(environment.ok() ? environment.value() : EnvironmentType::kHost);
    call.payload.lastSeen = param.lastSeen;
    return send(accessor, call);
  };
  const std::lock_guard lock(accessor.sampleMutex());
  for (int i = 0; i < kAsks; ++i) {
    if (const KelpReturn state = sendPhase(kProcessGpuUtilAsk); state != KelpReturn::kSuccess) {
      return state;
    }
    if (call.payload.ready == 1) {
      return sendPhase(kProcessGpuUtilFetch);
    }
  }
  return KelpReturn::kFailure;
}

#define MCI_device(...) MCI_SLOT(__VA_ARGS__)
#define MCI_memory(...)
#define MCI_links(...)
#define MCI_OPERATION(area, ...) MCI_##area(__VA_ARGS__)
#include "linux/ap/misc/mkis_protocol_v1/mci_operations.def"

}  // namespace kelp::linux_
