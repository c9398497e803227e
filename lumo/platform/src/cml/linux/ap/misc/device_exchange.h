#pragma once

#include <span>

#include "commands.h"
#include "common/mkis/firmware_components.h"
#include "linux/ap/misc/dev_desc_record.h"
#include "linux/ap/misc/interface_record.h"

// A device, its GPU and its firmware in the records of all protocols, by the driver's names of their
// fields.

namespace kelp::linux_ {

template <RecordOf<2> Record>
GpuStatus readReply(const Record& reply) {
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

template <RecordOf<8> Record>
DevDesc readReply(const Record& reply) {
  return readDevDesc(reply);
}

template <RecordOf<30> Record>
ProcessGpuUtilMap readReply(const Record& reply) {
  ProcessGpuUtilMap processes;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    processes.emplace(row.pid, ProcessGpuUtil{.pid = row.pid,
                                              .kind = row.kind,
                                              .timestamp = row.timestamp,
                                              .gpu = row.gpu,
                                              .memory = row.memory,
                                              .encoder = row.encoder,
                                              .decoder = row.decoder});
  }
  return processes;
}

template <RecordOf<32> Record>
DeviceInfoRom readReply(const Record& reply) {
  return {.serialNumber = textOf(reply.serialNumber), .brand = textOf(reply.brand)};
}

template <RecordOf<44> Record>
void fillRequest(Record& request, const ResetGpuHwErrorCountsParam& param) {
  request.mask = param.mask;
}

// Interfaces that are records in one protocol and commands to the board's controller in the other.

template <class Reply>
FirmwareVersions readFirmwareVersions(const Reply& reply) {
  FirmwareVersions versions;
  for (std::size_t i = 0; i < std::size(reply.versions); ++i) {
    versions.emplace(kFirmwareComponents[i], unlessAllOnes<unsigned int>(u32{reply.versions[i]}));
  }
  return versions;
}

/// The window is the one that was delivered, which need not be the one that was asked for.
template <class Reply>
EfuseData readEfuseData(const Reply& reply) {
  constexpr u32 kBitsHeld = sizeof reply.words * 8;
  EfuseData data{
      .startBit = reply.startBit, .bitCount = std::min(u32{reply.bitCount}, kBitsHeld), .words = {}};
  for (std::size_t i = 0; i < std::size(reply.words); ++i) {
    data.words.push_back(u32{reply.words[i]});
  }
  return data;
}

/// Thousandths of a degree Celsius; the lowest number is that of a limit that is not available.
template <class Reply>
TemperatureLimitInfo readTemperatureLimits(const Reply& reply) {
  const auto limit = [](s32 thousandths) -> Stated<float> {
    if (thousandths == std::numeric_limits<s32>::min()) {
      return KelpReturn::kNotSupported;
    }
    return ofThousandths(thousandths);
  };
  return {.slowdown = limit(reply.slowdown), .shutdown = limit(reply.shutdown)};
}

/// A GPU whose cores are all alike; a clock of 0 is unknown.
template <class Reply>
GpuSpec readGpuSpec(const Reply& reply, unsigned long maxMegahertz) {
  constexpr unsigned long kMega = 1000000;
  GpuSpec spec;
  spec.coreCount = u32{reply.coreCount};
  spec.clusterCount = u32{reply.clusterCount};
  spec.unitsPerCore = std::vector<unsigned int>(reply.coreCount, reply.unitsPerCore);
  spec.maxClock = unlessZero<unsigned long>(maxMegahertz * kMega);
  return spec;
}

/// Rows as far as the count says and the record holds them.
template <class Reply>
std::vector<DispInterfaceInfo> readDisplays(const Reply& reply, u32 count) {
  std::vector<DispInterfaceInfo> displays;
  for (const auto& row : std::span(reply.rows, rowsOf(count, reply.rows))) {
    displays.push_back({.type = static_cast<DispIntfType>(row.type),
                        .hRes = unlessAllOnes<unsigned int>(u32{row.hRes}),
                        .vRes = unlessAllOnes<unsigned int>(u32{row.vRes}),
                        .pixelClock = unlessAllOnes<unsigned int>(u32{row.pixelClock})});
  }
  return displays;
}

/// Fans that a board is believed to have.
constexpr u32 kMaxFans = 16;

}  // namespace kelp::linux_
