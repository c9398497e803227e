#pragma once

#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Load, clocks, temperatures, build and reset of a GPU.

namespace kelp::linux_ {

/// All in percent, all ones for a figure that is not available.
struct [[gnu::packed]] MciGetDeviceStatusV2 {
  u32 utilization;  // 0
  u32 engine0;      // 4
  u32 engine1;      // 8
  u32 engine2;      // 12
  u32 engine3;      // 16
  u32 memoryBusy;   // 20
  WIRE_GAP(24, 40);
  u32 coreAverage;  // 40
  WIRE_GAP(44, 92);
};
MCI_RECORD(MciGetDeviceStatusV2, 2, 2, 92);

struct [[gnu::packed]] MciGetDeviceStatusV3 {
  u32 utilization;  // 0
  u32 engine0;      // 4
  u32 engine1;      // 8
  u32 engine2;      // 12
  u32 engine3;      // 16
  u32 memoryBusy;   // 20
  u32 coreMax;      // 24
  WIRE_GAP(28, 40);
  u32 coreAverage;  // 40
  WIRE_GAP(44, 92);
};
MCI_RECORD(MciGetDeviceStatusV3, 2, 3, 92);

struct [[gnu::packed]] MciResetGpuV1 {
  WIRE_GAP(0, 20);
};
MCI_RECORD(MciResetGpuV1, 29, 1, 20);

struct [[gnu::packed]] MciResetGpuHwErrorCountsV1 {
  WIRE_GAP(0, 16);
  u64 mask;  // 16, in, a bit per group of counters
};
MCI_RECORD(MciResetGpuHwErrorCountsV1, 44, 1, 24);

struct [[gnu::packed]] MciProcessGpuUtilRow {
  u32 pid;        // 0
  u32 kind;       // 4
  u64 timestamp;  // 8, of the last activity, nanoseconds of the monotonic clock
  u32 gpu;        // 16, shares in percent, as all that follow
  u32 memory;     // 20
  u32 encoder;    // 24
  u32 decoder;    // 28
  WIRE_GAP(32, 60);
};
/// A sample is asked for in one phase and fetched in another. In the reply that brings it the first 24
/// bytes are the sampled window, which the tool does not need.
struct [[gnu::packed]] MciProcessGpuUtil {
  u32 phase;            // 0, in
  u32 environmentType;  // 4, in
  WIRE_GAP(8, 24);
  u64 lastSeen;                   // 24, in, nanoseconds
  u32 ready;                      // 32
  u32 count;                      // 36
  MciProcessGpuUtilRow rows[80];  // 40
  WIRE_GAP(4840, 4856);
};
struct [[gnu::packed]] MciGetProcessGpuUtilV1 : MciProcessGpuUtil {};
MCI_RECORD(MciGetProcessGpuUtilV1, 30, 1, 4856);
struct [[gnu::packed]] MciGetProcessGpuUtilV2 : MciProcessGpuUtil {};
MCI_RECORD(MciGetProcessGpuUtilV2, 30, 2, 4856);

struct [[gnu::packed]] MciGetClockV1 {
  u32 clockId;    // 0, in
  u64 frequency;  // 4, hertz
  WIRE_GAP(12, 28);
};
MCI_RECORD(MciGetClockV1, 51, 1, 28);

inline void fillRequest(MciGetClockV1& request, const QueryClockParam& param) {
  request.clockId = param.clockId;
}
inline unsigned long readReply(const MciGetClockV1& reply) {
  return reply.frequency;
}

struct [[gnu::packed]] MciGetTemperV1 {
  u32 sensorId;     // 0, in
  s32 temperature;  // 4, thousandths of a degree Celsius
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetTemperV1, 56, 1, 24);

inline void fillRequest(MciGetTemperV1& request, const QueryTemperParam& param) {
  request.sensorId = param.sensorId;
}
inline float readReply(const MciGetTemperV1& reply) {
  return ofThousandths(reply.temperature);
}

struct [[gnu::packed]] MciGetGpuConfInfoV1 {
  u8 coreCount;     // 0
  u8 clusterCount;  // 1
  u8 unitsPerCore;  // 2, of every core
  u16 maxClock;     // 3, megahertz, 0 unknown
  WIRE_GAP(5, 12);
};
MCI_RECORD(MciGetGpuConfInfoV1, 60, 1, 12);

inline GpuSpec readReply(const MciGetGpuConfInfoV1& reply) {
  return readGpuSpec(reply, reply.maxClock);
}

struct [[gnu::packed]] MciGetGpuConfInfoV2 {
  WIRE_GAP(0, 2);
  u8 unitsPerCore[16];  // 2, 0 for a core that is absent
  WIRE_GAP(18, 44);
};
MCI_RECORD(MciGetGpuConfInfoV2, 60, 2, 44);

inline GpuSpec readReply(const MciGetGpuConfInfoV2& reply) {
  GpuSpec spec;
  spec.unitsPerCore = std::vector<unsigned int>(std::begin(reply.unitsPerCore), std::end(reply.unitsPerCore));
  return spec;
}

/// Thousandths of a degree Celsius; the lowest number is that of a limit that is not available.
struct [[gnu::packed]] MciGetTemperLimitInfoV1 {
  WIRE_GAP(0, 8);
  s32 slowdown;  // 8
  s32 shutdown;  // 12
  WIRE_GAP(16, 32);
};
MCI_RECORD(MciGetTemperLimitInfoV1, 66, 1, 32);

inline TemperatureLimitInfo readReply(const MciGetTemperLimitInfoV1& reply) {
  return readTemperatureLimits(reply);
}

struct [[gnu::packed]] MciGetPstateV0 {
  u32 state;  // 0, 0 is the fastest
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciGetPstateV0, 67, 0, 20);

inline unsigned int readReply(const MciGetPstateV0& reply) {
  return reply.state;
}

struct [[gnu::packed]] MciSetPstateV0 {
  u32 state;  // 0, in
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciSetPstateV0, 68, 0, 20);

inline void fillRequest(MciSetPstateV0& request, const SetPerfStateParam& param) {
  request.state = param.state;
}

struct [[gnu::packed]] MciQueryThermalSlowdownStatisticsV0 {
  u32 count;      // 0, since boot
  u32 totalTime;  // 4, milliseconds
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciQueryThermalSlowdownStatisticsV0, 73, 0, 24);

inline ThermalSlowdownStatistics readReply(const MciQueryThermalSlowdownStatisticsV0& reply) {
  return {.count = reply.count, .totalTime = reply.totalTime};
}

}  // namespace kelp::linux_
