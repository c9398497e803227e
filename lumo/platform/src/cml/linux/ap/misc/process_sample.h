#pragma once

#include "linux/ap/misc/misc_call.h"
#include "linux/environment.h"

namespace kelp::linux_ {

constexpr u32 kProcessGpuUtilAsk = 0;
constexpr u32 kProcessGpuUtilFetch = 2;

/// The driver takes its time for a sample of the processes: it is asked until it says that there is one
/// to fetch. Each send starts from a fresh record.
template <class Accessor, class Call>
requires RecordOf<decltype(Call::payload), 30> KelpReturn exchange(const Accessor& accessor, Call& call,
                                                                   const QueryProcGpuUtilParam& param) {
  constexpr int kAsks = 5;
  const auto environment = Environment().getEnvironmentType();
  const auto sendPhase = [&](u32 phase) {
    call = newCall<decltype(Call::payload)>(accessor);
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

}  // namespace kelp::linux_
