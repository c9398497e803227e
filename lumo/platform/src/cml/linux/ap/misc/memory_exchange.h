#pragma once

#include <array>
#include <span>

#include "commands.h"
#include "linux/ap/misc/interface_record.h"

// Memory, its processes, its error correction and the vGPUs that share it in the records of all
// protocols, by the driver's names of their fields.

namespace kelp::linux_ {

/// A driver that counts less leaves the last region, and the system's memory, without a field.
template <RecordOf<3> Record>
MemoryUsage readReply(const Record& reply) {
  MemoryUsage usage;
  usage.total = unlessAllOnes<unsigned long>(u64{reply.total});
  usage.used = unlessAllOnes<unsigned long>(u64{reply.used});
  for (std::size_t i = 0; i < std::size(reply.region); ++i) {
    usage.region[i] = unlessAllOnes<unsigned long>(u64{reply.region[i]});
  }
  if constexpr (requires { reply.systemTotal; }) {
    usage.systemTotal = unlessAllOnes<unsigned long>(u64{reply.systemTotal});
    usage.guestReserved = unlessAllOnes<unsigned long>(u64{reply.guestReserved});
  }
  return usage;
}

template <RecordOf<4> Record>
ProcessMemoryMap readReply(const Record& reply) {
  ProcessMemoryMap processes;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    processes.emplace(
        row.pid,
        ProcessMemoryUsage{
            .gpuMemory = row.gpuMemory, .systemMemory = row.systemMemory, .kind = row.kind, .pid = row.pid});
  }
  return processes;
}

template <RecordOf<33> Record>
void fillRequest(Record& request, unsigned int vgpuId) {
  request.vgpuId = vgpuId;
}
template <RecordOf<33> Record>
unsigned int readReply(const Record& reply) {
  return reply.utilization;
}

template <RecordOf<34> Record>
void fillRequest(Record& request, unsigned int vgpuId) {
  request.vgpuId = vgpuId;
}
template <RecordOf<34> Record>
GuestMemoryUsage readReply(const Record& reply) {
  return {.total = unlessAllOnes<unsigned long>(u64{reply.total}),
          .used = unlessAllOnes<unsigned long>(u64{reply.used})};
}

/// Pages that are believed of one cause: a reader goes through them one call each.
constexpr u32 kMaxRetiredPages = 4096;

template <RecordOf<45> Record>
EccPageRetirementCount readReply(const Record& reply) {
  return {.singleBit = std::min(u32{reply.singleBit}, kMaxRetiredPages),
          .doubleBit = std::min(u32{reply.doubleBit}, kMaxRetiredPages)};
}

template <RecordOf<46> Record>
void fillRequest(Record& request, const QueryEccPageRetirementInfoParam& param) {
  request.wantedCause = param.cause;
  request.wantedIndex = param.index;
}
template <RecordOf<46> Record>
EccPageRetirementInfo readReply(const Record& reply) {
  return {.count = std::min(u64{reply.count}, u64{kMaxRetiredPages}),
          .address = reply.address,
          .timestamp = reply.timestamp,
          .cause = reply.cause,
          .location = reply.location,
          .errorCount = reply.errorCount};
}

template <RecordOf<47> Record>
void fillRequest(Record& request, const QueryEccPendingErrorInfoParam& param) {
  request.wantedIndex = param.index;
}
template <RecordOf<47> Record>
EccPendingErrorInfo readReply(const Record& reply) {
  return {.count = reply.count,
          .address = reply.address,
          .timestamp = reply.timestamp,
          .cause = reply.cause,
          .location = reply.location,
          .errorCount = reply.errorCount,
          .lastErrorTime = reply.lastErrorTime};
}

template <RecordOf<48> Record>
EccModeInfo readReply(const Record& reply) {
  return {.current = static_cast<EccMode>(u32{reply.current}),
          .pending = static_cast<EccMode>(u32{reply.pending})};
}

template <RecordOf<49> Record>
void fillRequest(Record& request, EccMode mode) {
  request.mode = static_cast<u32>(mode);
}

// Interfaces that are records in one protocol and commands to the board's controller in the other.

/// The channels together. A sum that leaves its field stays at the field's highest.
template <class Reply>
MemoryEdc sumOfChannels(const Reply& reply) {
  u64 readErrors = 0;
  u64 writeErrors = 0;
  u64 readRetries = 0;
  u64 writeRetries = 0;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.channelCount, reply.rows))) {
    readErrors += row.readErrors;
    writeErrors += row.writeErrors;
    readRetries += row.readRetries;
    writeRetries += row.writeRetries;
  }
  return {.readErrors = saturated<u32>(readErrors),
          .writeErrors = saturated<u32>(writeErrors),
          .readRetries = saturated<u32>(readRetries),
          .writeRetries = saturated<u32>(writeRetries)};
}

inline Stated<unsigned int> memoryTypeOf(u32 number) {
  constexpr u32 kUnknown = 15;
  if (number == kUnknown) {
    return KelpReturn::kNotSupported;
  }
  return number;
}

/// Makers of memory chips by the number in the record; the gaps are unknown.
inline Stated<std::string> memoryVendorOf(u32 number) {
  constexpr std::array<const char*, 4> kVendors{nullptr, "Samsung", "Micron", "Hynix"};
  if (number >= kVendors.size() || kVendors[number] == nullptr) {
    return KelpReturn::kNotSupported;
  }
  return std::string(kVendors[number]);
}

}  // namespace kelp::linux_
