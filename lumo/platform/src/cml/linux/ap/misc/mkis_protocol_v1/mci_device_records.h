#pragma once

#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

// Identity, description and firmware of a device, and its reset.

namespace kelp::linux_ {

/// The driver's description of a node. 65535 in a node number says that there is no such node.
struct [[gnu::packed]] MciMgtDevDesc {
  u16 miscId;   // 0
  u16 value32;  // 2, number of GPU cores
  u64 value64;  // 4, mask of usable cores
  WIRE_GAP(12, 16);
  u32 devType;       // 16, 0 plain device, 1 MPC parent, 2 MPC instance
  u32 flagA;         // 20, MPC capable
  u32 flagB;         // 24, has Sablink ports
  u16 cardId;        // 28
  u16 renderId;      // 30
  u16 parentMiscId;  // 32
  u64 sbdf;          // 34, packed PCI address
  u16 ionId;         // 42
  WIRE_GAP(44, 60);
};
struct [[gnu::packed]] MciGetMgtDevDescV1 : MciMgtDevDesc {};
MCI_RECORD(MciGetMgtDevDescV1, 8, 1, 60);
struct [[gnu::packed]] MciGetMgtDevDescV2 : MciMgtDevDesc {};
MCI_RECORD(MciGetMgtDevDescV2, 8, 2, 60);

struct [[gnu::packed]] MciGetInfoRomV1 {
  char serialNumber[64];  // 0
  char brand[64];         // 64
  WIRE_GAP(128, 256);
};
MCI_RECORD(MciGetInfoRomV1, 32, 1, 256);

struct [[gnu::packed]] MciResetDeviceEventMsgsV1 {
  WIRE_GAP(0, 16);
};
MCI_RECORD(MciResetDeviceEventMsgsV1, 43, 1, 16);

struct [[gnu::packed]] MciResetDeviceV1 {
  WIRE_GAP(0, 16);
};
MCI_RECORD(MciResetDeviceV1, 50, 1, 16);

struct [[gnu::packed]] MciGetSmcFwVerV1 {
  u32 versions[6];  // 0
  WIRE_GAP(24, 40);
};
MCI_RECORD(MciGetSmcFwVerV1, 52, 1, 40);

inline FirmwareVersions readReply(const MciGetSmcFwVerV1& reply) {
  return readFirmwareVersions(reply);
}

struct [[gnu::packed]] MciGetEfuseDataV1 {
  u32 startBit;   // 0, in: wanted, out: first bit delivered
  u32 bitCount;   // 4, likewise
  u32 words[32];  // 8
  WIRE_GAP(136, 152);
};
MCI_RECORD(MciGetEfuseDataV1, 62, 1, 152);

inline void fillRequest(MciGetEfuseDataV1& request, const QueryEfuseDataParam& param) {
  request.startBit = param.startBit;
  request.bitCount = param.bitCount;
}

inline EfuseData readReply(const MciGetEfuseDataV1& reply) {
  return readEfuseData(reply);
}

struct [[gnu::packed]] MciGetDevNameV0 {
  char name[48];  // 0
  WIRE_GAP(48, 64);
};
MCI_RECORD(MciGetDevNameV0, 71, 0, 64);

inline std::string readReply(const MciGetDevNameV0& reply) {
  return textOf(reply.name);
}

}  // namespace kelp::linux_
