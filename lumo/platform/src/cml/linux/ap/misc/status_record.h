#pragma once

#include <iterator>
#include <span>

#include "commands.h"
#include "linux/ap/wire.h"

// Replies that the protocols share field by field, though the records around them differ. `Record` has
// the driver's fields by their names.

namespace kelp::linux_ {

template <class Record>
GpuStatus readGpuStatus(const Record& reply) {
  GpuStatus status;
  status.utilization = unlessAllOnes<float>(u32{reply.utilization});
  status.engine0 = unlessAllOnes<float>(u32{reply.engine0});
  status.engine1 = unlessAllOnes<float>(u32{reply.engine1});
  status.engine2 = unlessAllOnes<float>(u32{reply.engine2});
  status.engine3 = unlessAllOnes<float>(u32{reply.engine3});
  status.memoryBusy = unlessAllOnes<float>(u32{reply.memoryBusy});
  if constexpr (requires { reply.coreMax; }) {
    status.coreMax = unlessAllOnes<float>(u32{reply.coreMax});
  }
  status.coreAverage = unlessAllOnes<float>(u32{reply.coreAverage});
  return status;
}

template <class Record>
MemoryUsage readMemoryUsage(const Record& reply) {
  MemoryUsage usage;
  usage.total = unlessAllOnes<unsigned long>(u64{reply.total});
  usage.used = unlessAllOnes<unsigned long>(u64{reply.used});
  for (std::size_t i = 0; i < std::size(reply.region); ++i) {
    usage.region[i] = unlessAllOnes<unsigned long>(u64{reply.region[i]});
  }
  return usage;
}

template <class Record>
ProcessMemoryMap readProcessMemory(const Record& reply) {
  ProcessMemoryMap processes;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    processes.emplace(
        row.pid,
        ProcessMemoryUsage{
            .gpuMemory = row.gpuMemory, .systemMemory = row.systemMemory, .kind = row.kind, .pid = row.pid});
  }
  return processes;
}

}  // namespace kelp::linux_
