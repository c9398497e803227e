#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Load, temperature and performance state of a GPU.

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

struct [[gnu::packed]] MciGetTemperV1 {
  u32 sensorId;     // 0, in
  s32 temperature;  // 4, thousandths of a degree Celsius
  WIRE_GAP(8, 24);
};
MCI_RECORD(MciGetTemperV1, 56, 1, 24);

struct [[gnu::packed]] MciGetPstateV0 {
  u32 state;  // 0, 0 is the fastest
  WIRE_GAP(4, 20);
};
MCI_RECORD(MciGetPstateV0, 67, 0, 20);

}  // namespace kelp::linux_
