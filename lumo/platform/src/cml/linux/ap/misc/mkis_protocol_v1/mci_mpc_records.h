#pragma once

#include <span>

#include "commands.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

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

inline MpcProfile profileOf(const MciMpcProfileRow& row) {
  return {.id = row.id, .name = textOf(row.name), .coreCount = row.coreCount, .memory = row.memory};
}
inline std::vector<MpcProfile> readReply(const MciGetMgtMpcProfileListV1& reply) {
  std::vector<MpcProfile> profiles;
  for (const MciMpcProfileRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    profiles.push_back(profileOf(row));
  }
  return profiles;
}

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

inline std::vector<MpcConfiguration> readReply(const MciGetMgtMpcConfListV1& reply) {
  std::vector<MpcConfiguration> configurations;
  for (const MciMpcConfigurationRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    MpcConfiguration& configuration = configurations.emplace_back();
    configuration.id = row.id;
    configuration.name = textOf(row.name);
    for (std::size_t i = 0; i < std::min(std::size_t{row.profileCount}, kConfigurationProfiles); ++i) {
      configuration.profileIds.push_back(row.profileIds[i]);
    }
  }
  return configurations;
}

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

inline MpcInstList readReply(const MciGetMgtMpcInstanceListV1& reply) {
  MpcInstList instances;
  for (const MciMpcInstanceRow& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    instances.push_back({.miscId = row.miscId, .instanceId = row.instanceId});
  }
  return instances;
}

struct [[gnu::packed]] MciSetMgtMpcConfV1 {
  u16 configId;  // 0, in
  WIRE_GAP(2, 18);
};
MCI_RECORD(MciSetMgtMpcConfV1, 12, 1, 18);

inline void fillRequest(MciSetMgtMpcConfV1& request, const SetMpcConfParam& param) {
  request.configId = saturated<u16>(param.configId);
}

struct [[gnu::packed]] MciGetMgtMpcParentV1 {
  u16 parentMiscId;  // 0
  WIRE_GAP(2, 18);
};
MCI_RECORD(MciGetMgtMpcParentV1, 13, 1, 18);

inline unsigned long readReply(const MciGetMgtMpcParentV1& reply) {
  return reply.parentMiscId;
}

/// `id` holds the profile in bits 0 to 7 and the instance's index in bits 8 to 15.
struct [[gnu::packed]] MciGetMgtMpcProfileV1 {
  MciMpcProfileRow profile;  // 0
};
MCI_RECORD(MciGetMgtMpcProfileV1, 14, 1, 60);

inline MpcProfile readReply(const MciGetMgtMpcProfileV1& reply) {
  return profileOf(reply.profile);
}

struct [[gnu::packed]] MciSetMgtMpcSwitchV1 {
  u8 mode;  // 0, in
  WIRE_GAP(1, 17);
};
MCI_RECORD(MciSetMgtMpcSwitchV1, 15, 1, 17);

inline void fillRequest(MciSetMgtMpcSwitchV1& request, const SetMpcSwitchParam& param) {
  request.mode = saturated<u8>(static_cast<u32>(param.mode));
}

/// The driver tells more of the configuration than its id; the list of configurations has all of it.
struct [[gnu::packed]] MciGetMgtMpcConfV1 {
  u16 id;  // 0, 65535 while none is set
  WIRE_GAP(2, 118);
};
MCI_RECORD(MciGetMgtMpcConfV1, 16, 1, 118);

inline unsigned int readReply(const MciGetMgtMpcConfV1& reply) {
  return reply.id;
}

}  // namespace kelp::linux_
