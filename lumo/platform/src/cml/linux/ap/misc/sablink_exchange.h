#pragma once

#include <array>
#include <bit>
#include <span>

#include "commands.h"
#include "linux/ap/misc/interface_record.h"

// Sablink in the records of all protocols, by the driver's names of their fields.

namespace kelp::linux_ {

/// Links that a device is believed to have.
constexpr u32 kMaxSablinks = 32;

template <RecordOf<17> Record>
SablinkSpec readReply(const Record& reply) {
  return {.linkCount = std::min(u32{reply.linkCount}, kMaxSablinks),
          .linkSpeed = reply.linkSpeed,
          .version = reply.version};
}

template <RecordOf<18> Record>
void fillRequest(Record& request, const QuerySablinkCapStatusParam& param) {
  request.link = param.link;
  request.capability = param.capability;
}
template <RecordOf<18> Record>
SablinkCapStatus readReply(const Record& reply) {
  return static_cast<SablinkCapStatus>(u32{reply.status});
}

template <RecordOf<19> Record>
void fillRequest(Record& request, const QuerySablinkStateParam& param) {
  request.link = param.link;
}
template <RecordOf<19> Record>
SablinkState readReply(const Record& reply) {
  return static_cast<SablinkState>(u32{reply.state});
}

template <RecordOf<20> Record>
void fillRequest(Record& request, const QuerySablinkErrCounterParam& param) {
  request.link = param.link;
  request.kind = param.kind;
}
template <RecordOf<20> Record>
unsigned long readReply(const Record& reply) {
  return reply.value;
}

template <RecordOf<21> Record>
void fillRequest(Record& request, unsigned int link) {
  request.link = link;
}

/// The peer's field differs in width between the protocols.
template <class Record>
requires RecordOf<Record, 22> || RecordOf<Record, 24>
void fillRequest(Record& request, const QuerySablinkLayoutsParam& param) {
  request.peer = saturated<decltype(request.peer)>(param.peer);
}
template <RecordOf<22> Record>
std::vector<SablinkLayout> readReply(const Record& reply) {
  std::vector<SablinkLayout> layouts;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    layouts.push_back({.localPort = row.localPort, .remotePort = row.remotePort});
  }
  return layouts;
}

template <RecordOf<23> Record>
void fillRequest(Record& request, const QuerySablinkStateParam& param) {
  request.link = param.link;
}
template <RecordOf<23> Record>
SablinkRemoteDevInfo readReply(const Record& reply) {
  return {.sbdf = reply.remoteSbdf, .link = reply.remoteLink, .miscId = reply.remoteMiscId};
}

template <RecordOf<24> Record>
std::vector<SablinkPath> readReply(const Record& reply) {
  std::vector<SablinkPath> paths;
  for (const auto& row : std::span(reply.rows, rowsOf(reply.count, reply.rows))) {
    SablinkPath& path = paths.emplace_back();
    for (std::size_t i = 0; i < rowsOf(row.deviceCount, row.miscIds); ++i) {
      path.miscIds.push_back(u32{row.miscIds[i]});
    }
  }
  return paths;
}

template <RecordOf<36> Record>
void fillRequest(Record& request, const StartSablinkPerfParam& param) {
  request.link = param.link;
}
template <RecordOf<36> Record>
SablinkPerfStart readReply(const Record& reply) {
  return {.sessionId = reply.sessionId, .actualInterval = reply.actualInterval};
}

template <class Record>
requires RecordOf<Record, 37> || RecordOf<Record, 38>
void fillRequest(Record& request, const QuerySablinkPerfDataParam& param) {
  request.selector = selectorOf(param.link, param.sessionId);
}
template <RecordOf<37> Record>
SablinkPerfData readReply(const Record& reply) {
  return {.rxBytes = reply.rxBytes,
          .txBytes = reply.txBytes,
          .rxRate = reply.rxRate,
          .txRate = reply.txRate,
          .samples = reply.samples};
}
template <RecordOf<38> Record>
SablinkPerfStop readReply(const Record& reply) {
  return {.samples = reply.samples};
}

template <RecordOf<39> Record>
void fillRequest(Record& request, const QuerySablinkStateParam& param) {
  request.laneCount = std::size(request.rows);
  request.link = param.link;
}
/// The reply is kept as it is; where it lacks the last reserved bytes they are 0.
template <RecordOf<39> Record>
SablinkSerdesStatus readReply(const Record& reply) {
  std::array<u8, sizeof(SablinkSerdesStatus)> bytes{};
  static_assert(sizeof reply <= bytes.size());
  std::memcpy(bytes.data(), &reply, sizeof reply);
  auto status = std::bit_cast<SablinkSerdesStatus>(bytes);
  status.laneCount = std::min(status.laneCount, static_cast<u32>(status.lanes.size()));
  return status;
}

}  // namespace kelp::linux_
