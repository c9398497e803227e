#pragma once

#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"
#include "linux/ap/misc/mpc_exchange.h"

// Division of a GPU into MPC instances.

namespace kelp::linux_ {

struct [[gnu::packed]] MciMpcProfileRow {
  u16 id;         // 0
  char name[32];  // 2
  u16 coreCount;  // 34
  u64 memory;     // 36, MiB
  WIRE_GAP(44, 60);
};
struct [[gnu::packed]] MciGetMgtMpcProfileListV1 {
  u32 count;                  // 0
  MciMpcProfileRow rows[32];  // 4
  WIRE_GAP(1924, 1940);
};
MCI_RECORD(MciGetMgtMpcProfileListV1, 9, 1, 1940);

constexpr std::size_t kConfigurationProfiles = 32;

struct [[gnu::packed]] MciMpcConfigurationRow {
  u16 id;                                  // 0
  char name[32];                           // 2
  u32 profileCount;                        // 34
  u16 profileIds[kConfigurationProfiles];  // 38
  WIRE_GAP(102, 118);
};
struct [[gnu::packed]] MciGetMgtMpcConfListV1 {
  u32 count;                        // 0
  MciMpcConfigurationRow rows[32];  // 4
  WIRE_GAP(3780, 3796);
};
MCI_RECORD(MciGetMgtMpcConfListV1, 10, 1, 3796);

struct [[gnu::packed]] MciMpcInstanceRow {
  u16 miscId;      // 0
  u16 instanceId;  // 2
};
struct [[gnu::packed]] MciGetMgtMpcInstanceListV1 {
  u16 count;                   // 0
  MciMpcInstanceRow rows[17];  // 2
  WIRE_GAP(70, 86);
};
MCI_RECORD(MciGetMgtMpcInstanceListV1, 11, 1, 86);

struct [[gnu::packed]] MciSetMgtMpcConfV1 {
  u16 configId;  // 0, in
  WIRE_GAP(2, 18);
};
MCI_RECORD(MciSetMgtMpcConfV1, 12, 1, 18);

struct [[gnu::packed]] MciGetMgtMpcParentV1 {
  u16 parentMiscId;  // 0
  WIRE_GAP(2, 18);
};
MCI_RECORD(MciGetMgtMpcParentV1, 13, 1, 18);

/// `id` holds the profile in bits 0 to 7 and the instance's index in bits 8 to 15.
struct [[gnu::packed]] MciGetMgtMpcProfileV1 {
  MciMpcProfileRow profile;  // 0
};
MCI_RECORD(MciGetMgtMpcProfileV1, 14, 1, 60);

struct [[gnu::packed]] MciSetMgtMpcSwitchV1 {
  u8 mode;  // 0, in
  WIRE_GAP(1, 17);
};
MCI_RECORD(MciSetMgtMpcSwitchV1, 15, 1, 17);

/// The driver tells more of the configuration than its id; the list of configurations has all of it.
struct [[gnu::packed]] MciGetMgtMpcConfV1 {
  u16 id;  // 0, 65535 while none is set
  WIRE_GAP(2, 118);
};
MCI_RECORD(MciGetMgtMpcConfV1, 16, 1, 118);

}  // namespace kelp::linux_
