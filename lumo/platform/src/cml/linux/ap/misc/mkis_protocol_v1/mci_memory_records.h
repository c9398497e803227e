#pragma once

#include "linux/ap/misc/memory_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Memory of a device, the processes that hold it, and its error detection.

namespace kelp::linux_ {

/// Bytes, all ones for a figure that is not available.
struct [[gnu::packed]] MciGetDeviceMemUsageV1 {
  u64 total;      // 0
  u64 used;       // 8, the driver's own count
  u64 region[3];  // 16, processes, driver, firmware
  WIRE_GAP(40, 72);
};
MCI_RECORD(MciGetDeviceMemUsageV1, 3, 1, 72);

struct [[gnu::packed]] MciProcessMemRow {
  u64 gpuMemory;     // 0
  u64 systemMemory;  // 8
  u32 kind;          // 16, 0 graphics, 1 compute
  u32 pid;           // 20
  WIRE_GAP(24, 92);
};
struct [[gnu::packed]] MciGetProcessLevelMemV3 {
  u32 count;  // 0
  WIRE_GAP(4, 8);
  MciProcessMemRow rows[80];  // 8
  WIRE_GAP(7368, 7384);
};
MCI_RECORD(MciGetProcessLevelMemV3, 4, 3, 7384);

struct [[gnu::packed]] MciGetDdrConfInfoV1 {
  u64 maxClock;  // 0, hertz, 0 unknown
  WIRE_GAP(8, 9);
  u8 typeVendor;  // 9, bits 0 to 3 type, bits 4 to 7 vendor
  WIRE_GAP(10, 14);
  u16 channels;  // 14, bits 0 to 7 count, bits 8 to 15 width in bits
  WIRE_GAP(16, 24);
};
MCI_RECORD(MciGetDdrConfInfoV1, 57, 1, 24);

inline MemorySpec readReply(const MciGetDdrConfInfoV1& reply) {
  MemorySpec spec;
  spec.maxClock = unlessZero<unsigned long>(u64{reply.maxClock});
  spec.type = memoryTypeOf(reply.typeVendor & 0xFU);
  spec.vendor = memoryVendorOf(reply.typeVendor >> 4);
  spec.channelCount = unlessZero<unsigned int>(reply.channels & 0xFFU);
  spec.channelWidth = unlessZero<unsigned int>(u32{reply.channels} >> 8);
  return spec;
}

struct [[gnu::packed]] MciGetMemTemperV1 {
  u32 temperature;  // 0, of the hottest channel, degrees Celsius
  WIRE_GAP(4, 8);
  u64 channelMask;  // 8, channels that were measured
  WIRE_GAP(16, 212);
};
MCI_RECORD(MciGetMemTemperV1, 63, 1, 212);

/// A reading of no channel at all is none.
inline Stated<unsigned int> readReply(const MciGetMemTemperV1& reply) {
  if (reply.channelMask == 0) {
    return KelpReturn::kNotSupported;
  }
  return u32{reply.temperature};
}

struct [[gnu::packed]] MciGetMemTemperV2 {
  u32 temperature;  // 0, of the hottest channel, degrees Celsius
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciGetMemTemperV2, 63, 2, 20);

inline unsigned int readReply(const MciGetMemTemperV2& reply) {
  return reply.temperature;
}

struct [[gnu::packed]] MciMemEdcRow {
  u32 readErrors;    // 0
  u32 writeErrors;   // 4
  u32 readRetries;   // 8
  u32 writeRetries;  // 12
};
struct [[gnu::packed]] MciGetMemEdcV1 {
  u32 channelCount;       // 0
  MciMemEdcRow rows[24];  // 4
  WIRE_GAP(388, 404);
};
MCI_RECORD(MciGetMemEdcV1, 64, 1, 404);

inline MemoryEdc readReply(const MciGetMemEdcV1& reply) {
  return sumOfChannels(reply);
}

struct [[gnu::packed]] MciGetMemEdcV2 {
  MciMemEdcRow total;  // 0
  WIRE_GAP(16, 32);
};
MCI_RECORD(MciGetMemEdcV2, 64, 2, 32);

inline MemoryEdc readReply(const MciGetMemEdcV2& reply) {
  return {.readErrors = reply.total.readErrors,
          .writeErrors = reply.total.writeErrors,
          .readRetries = reply.total.readRetries,
          .writeRetries = reply.total.writeRetries};
}

}  // namespace kelp::linux_
