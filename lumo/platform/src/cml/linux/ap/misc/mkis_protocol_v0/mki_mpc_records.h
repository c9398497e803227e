#pragma once

#include "linux/ap/misc/mkis_protocol_v0/mki_record.h"
#include "linux/ap/misc/mpc_exchange.h"

// Division of a GPU into MPC instances.

namespace kelp::linux_ {

struct [[gnu::packed]] MkiMpcProfileRow {
  u16 id;         // 0
  char name[32];  // 2
  u16 coreCount;  // 34
  u64 memory;     // 36, MiB
  WIRE_GAP(44, 50);
};
struct [[gnu::packed]] MkiGetMgtMpcProfileListV0 {
  u32 count;                  // 0
  MkiMpcProfileRow rows[32];  // 4
};
MKI_CALL(MkiGetMgtMpcProfileListV0, 9, 0, 0x86444DB3);

struct [[gnu::packed]] MkiMpcConfigurationRow {
  u16 id;              // 0
  char name[32];       // 2
  u32 profileCount;    // 34
  u16 profileIds[32];  // 38
};
struct [[gnu::packed]] MkiGetMgtMpcConfListV0 {
  u32 count;                        // 0
  MkiMpcConfigurationRow rows[32];  // 4
};
MKI_CALL(MkiGetMgtMpcConfListV0, 10, 0, 0x8CC44DB4);

struct [[gnu::packed]] MkiMpcInstanceRow {
  u16 miscId;      // 0
  u16 instanceId;  // 2
};
struct [[gnu::packed]] MkiGetMgtMpcInstanceListV0 {
  u16 count;                   // 0
  MkiMpcInstanceRow rows[17];  // 2
};
MKI_CALL(MkiGetMgtMpcInstanceListV0, 11, 0, 0x80464DB5);

struct [[gnu::packed]] MkiSetMgtMpcConfV0 {
  u16 configId;  // 0, in
};
MKI_CALL(MkiSetMgtMpcConfV0, 12, 0, 0x40024DB6);

struct [[gnu::packed]] MkiGetMgtMpcParentV0 {
  u16 parentMiscId;  // 0
};
MKI_CALL(MkiGetMgtMpcParentV0, 13, 0, 0x80024DB7);

/// `id` holds the profile in bits 0 to 7 and the instance's index in bits 8 to 15.
struct [[gnu::packed]] MkiGetMgtMpcProfileV0 {
  MkiMpcProfileRow profile;  // 0
};
MKI_CALL(MkiGetMgtMpcProfileV0, 14, 0, 0x80324DB8);

struct [[gnu::packed]] MkiSetMgtMpcSwitchV0 {
  u8 mode;  // 0, in
};
MKI_CALL(MkiSetMgtMpcSwitchV0, 15, 0, 0x40014DB9);

struct [[gnu::packed]] MkiGetMgtMpcConfV0 {
  u16 id;  // 0, 65535 while none is set
};
MKI_CALL(MkiGetMgtMpcConfV0, 16, 0, 0x80024DBA);

}  // namespace kelp::linux_
