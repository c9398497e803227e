#pragma once

#include <span>

#include "commands.h"
#include "linux/ap/misc/interface_record.h"

// Division of a GPU into MPC instances in the records of all protocols, by the driver's names of their
// fields.

namespace kelp::linux_ {

template <class Row>
MpcProfile profileOf(const Row& row) {
  return {.id = row.id, .name = textOf(row.name), .coreCount = row.coreCount, .memory = row.memory};
}

template <RecordOf<9> Record>
std::vector<MpcProfile> readReply(const Record& reply) {
  std::vector<MpcProfile> profiles;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    profiles.push_back(profileOf(row));
  }
  return profiles;
}

template <RecordOf<10> Record>
std::vector<MpcConfiguration> readReply(const Record& reply) {
  std::vector<MpcConfiguration> configurations;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    MpcConfiguration& configuration = configurations.emplace_back();
    configuration.id = row.id;
    configuration.name = textOf(row.name);
    for (std::size_t i = 0; i < rowsOf(row.profileCount, row.profileIds); ++i) {
      configuration.profileIds.push_back(row.profileIds[i]);
    }
  }
  return configurations;
}

template <RecordOf<11> Record>
MpcInstList readReply(const Record& reply) {
  MpcInstList instances;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    instances.push_back({.miscId = row.miscId, .instanceId = row.instanceId});
  }
  return instances;
}

template <RecordOf<12> Record>
void fillRequest(Record& request, const SetMpcConfParam& param) {
  request.configId = saturated<u16>(param.configId);
}

template <RecordOf<13> Record>
unsigned long readReply(const Record& reply) {
  return reply.parentMiscId;
}

template <RecordOf<14> Record>
MpcProfile readReply(const Record& reply) {
  return profileOf(reply.profile);
}

template <RecordOf<15> Record>
void fillRequest(Record& request, const SetMpcSwitchParam& param) {
  request.mode = saturated<u8>(static_cast<u32>(param.mode));
}

template <RecordOf<16> Record>
unsigned int readReply(const Record& reply) {
  return reply.id;
}

}  // namespace kelp::linux_
