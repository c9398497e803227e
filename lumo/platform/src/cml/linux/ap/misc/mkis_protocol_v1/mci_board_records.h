#pragma once

#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// What a board has around its chip: fans, power, voltage and displays.

namespace kelp::linux_ {

struct [[gnu::packed]] MciGetFanCountV1 {
  u32 count;  // 0
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciGetFanCountV1, 53, 1, 20);

inline unsigned int readReply(const MciGetFanCountV1& reply) {
  return std::min(u32{reply.count}, kMaxFans);
}

struct [[gnu::packed]] MciGetFanSpeedV1 {
  WIRE_GAP(0, 8);
  u32 speed;  // 8, in the unit that was asked for
  WIRE_GAP(12, 16);
  u64 selector;  // 16, in, fan and unit
  WIRE_GAP(24, 28);
};
MCI_RECORD(MciGetFanSpeedV1, 54, 1, 28);

inline void fillRequest(MciGetFanSpeedV1& request, const QueryFanSpeedParam& param) {
  request.selector = selectorOf(param.fanIndex, static_cast<u32>(param.unit));
}
inline unsigned int readReply(const MciGetFanSpeedV1& reply) {
  return reply.speed;
}

struct [[gnu::packed]] MciGetPowerV1 {
  u32 domain;  // 0, in
  u32 power;   // 4, milliwatts
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetPowerV1, 55, 1, 24);

inline void fillRequest(MciGetPowerV1& request, const QueryPowerUsageParam& param) {
  request.domain = param.domain;
}
inline unsigned int readReply(const MciGetPowerV1& reply) {
  return reply.power;
}

struct [[gnu::packed]] MciDisplayRow {
  u8 type;         // 0
  u32 hRes;        // 1, pixels
  u32 vRes;        // 5, pixels
  u32 pixelClock;  // 9, units of 100 kHz
  WIRE_GAP(13, 17);
};
struct [[gnu::packed]] MciGetDispConfInfoV1 {
  u16 count;              // 0
  MciDisplayRow rows[8];  // 2
  WIRE_GAP(138, 154);
};
MCI_RECORD(MciGetDispConfInfoV1, 61, 1, 154);

inline std::vector<DispInterfaceInfo> readReply(const MciGetDispConfInfoV1& reply) {
  return readDisplays(reply, reply.count);
}

struct [[gnu::packed]] MciGetGpuVoltageV1 {
  u32 rail;     // 0, in
  u32 voltage;  // 4, millivolts
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetGpuVoltageV1, 65, 1, 24);

inline void fillRequest(MciGetGpuVoltageV1& request, const QueryVoltageParam& param) {
  request.rail = param.rail;
}
/// Volts.
inline float readReply(const MciGetGpuVoltageV1& reply) {
  return ofThousandths(reply.voltage);
}

struct [[gnu::packed]] MciQueryPowerLimitV0 {
  u32 kind;   // 0, in
  u32 limit;  // 4, milliwatts
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciQueryPowerLimitV0, 72, 0, 24);

inline void fillRequest(MciQueryPowerLimitV0& request, PowerLimitType kind) {
  request.kind = static_cast<u32>(kind);
}
inline unsigned int readReply(const MciQueryPowerLimitV0& reply) {
  return reply.limit;
}

struct [[gnu::packed]] MciSetPowerLimitV0 {
  u32 limit;  // 0, in, milliwatts, until the next boot
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciSetPowerLimitV0, 76, 0, 20);

/// A limit that is to outlive the boot has no form here, and one that does not would be a lie.
inline KelpReturn fillRequest(MciSetPowerLimitV0& request, const SetPowerLimitParam& param) {
  if (param.persistent) {
    return KelpReturn::kNotSupported;
  }
  request.limit = param.limit;
  return KelpReturn::kSuccess;
}

struct [[gnu::packed]] MciSetPowerLimitV1 {
  u32 limit;       // 0, in, milliwatts
  u32 persistent;  // 4, in
  WIRE_GAP(8, 20);
};
MCI_RECORD(MciSetPowerLimitV1, 76, 1, 20);

inline void fillRequest(MciSetPowerLimitV1& request, const SetPowerLimitParam& param) {
  request.limit = param.limit;
  request.persistent = param.persistent ? 1 : 0;
}

}  // namespace kelp::linux_
