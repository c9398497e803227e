#pragma once

#include "commands.h"
#include "common/pcie_config_space.h"
#include "linux/ap/misc/interface_record.h"

// The PCI side of a device in the records of all protocols, by the driver's names of their fields.

namespace kelp::linux_ {

template <RecordOf<6> Record>
PcieInfo readReply(const Record& reply) {
  return PcieConfigSpace(reply.configSpace).decode();
}

template <RecordOf<7> Record>
void fillRequest(Record& request, const QueryP2pStatusParam& param) {
  request.peer = param.peer;
  request.capability = param.capability;
}
template <RecordOf<7> Record>
P2pCapStatus readReply(const Record& reply) {
  return static_cast<P2pCapStatus>(u32{reply.status});
}

template <RecordOf<26> Record>
void fillRequest(Record& request, const StartPciePerfParam& param) {
  request.interval = param.interval;
}
template <RecordOf<26> Record>
unsigned int readReply(const Record& reply) {
  return reply.sessionId;
}

template <RecordOf<27> Record>
void fillRequest(Record& request, const QueryPciePerfDataParam& param) {
  request.sessionId = param.sessionId;
}
/// The oldest record ends behind the receive rates.
template <RecordOf<27> Record>
PcieBandWidthData readReply(const Record& reply) {
  PcieBandWidthData data{.rxBytes = reply.rxBytes,
                         .txBytes = reply.txBytes,
                         .rxRate = reply.rxRate,
                         .txRate = reply.txRate,
                         .state = reply.state,
                         .rxMin = u32{reply.rxMin},
                         .rxMean = u32{reply.rxMean},
                         .rxMax = u32{reply.rxMax},
                         .txMin = {},
                         .txMean = {},
                         .txMax = {},
                         .samples = {}};
  if constexpr (requires { reply.txMin; }) {
    data.txMin = u32{reply.txMin};
    data.txMean = u32{reply.txMean};
    data.txMax = u32{reply.txMax};
    data.samples = u32{reply.samples};
  }
  return data;
}

template <RecordOf<28> Record>
void fillRequest(Record& request, const StopPciePerfParam& param) {
  request.sessionId = param.sessionId;
}
/// The intervals that were taken in all.
template <RecordOf<28> Record>
int readReply(const Record& reply) {
  return saturated<int>(reply.samples);
}

template <RecordOf<31> Record>
PcieSlotInfo readReply(const Record& reply) {
  return {.number = reply.slotNumber, .name = textOf(reply.slotName)};
}

template <RecordOf<35> Record>
unsigned long readReply(const Record& reply) {
  return reply.replays;
}

}  // namespace kelp::linux_
