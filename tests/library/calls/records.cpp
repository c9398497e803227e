#include "calls/records.h"

#include <cstring>
#include <string>

namespace tolk_test {
namespace {

/// Values one behind the other, with blanks between.
template <class First, class... Rest>
void row(std::ostream& out, const First& first, const Rest&... rest) {
  out << first;
  ((out << ' ' << rest), ...);
}

/// The text of a field, which is a fault without its NUL or with something behind it.
template <std::size_t size>
std::string text(const char (&field)[size]) {
  const std::size_t length = strnlen(field, size);
  if (length == size) {
    return "(text without NUL)";
  }
  for (std::size_t i = length; i < size; ++i) {
    if (field[i] != '\0') {
      return "(text not cleared)";
    }
  }
  return std::string(field, length);
}

const char* spare(unsigned long long reserved) {
  return reserved == 0 ? "" : " (reserved field is not 0)";
}

}  // namespace

void print(std::ostream& out, unsigned number) {
  out << number;
}
void print(std::ostream& out, unsigned long long number) {
  out << number;
}
void print(std::ostream& out, int number) {
  out << number;
}

void print(std::ostream& out, LumoDevice* device) {
  unsigned long long number = 0;
  if (device == nullptr) {
    out << "none";
  } else if (lumoDeviceGetIntId(device, &number) == LUMO_RETURN_SUCCESS) {
    out << number;
  } else {
    out << "(handle without device)";
  }
}
void print(std::ostream& out, const LumoGpu* gpu) {
  out << (gpu != nullptr ? "gpu" : "none");
}
void print(std::ostream& out, const LumoMemory* memory) {
  out << (memory != nullptr ? "memory" : "none");
}
void print(std::ostream& out, const LumoVpu* vpu) {
  out << (vpu != nullptr ? "vpu" : "none");
}

void print(std::ostream& out, const LumoPciInfo& info) {
  row(out, text(info.sbdf), info.domain, info.bus, info.device, info.vendorId, info.deviceId,
      info.subsystemId, info.maxSpeed, info.curSpeed, info.maxWidth, info.curWidth, info.maxGen, info.curGen);
}
void print(std::ostream& out, const LumoPciSlotInfo& slot) {
  row(out, slot.number, text(slot.name));
}
void print(std::ostream& out, const LumoPcieBandWidth& data) {
  row(out, data.rxBytes, data.txBytes, data.rxRate, data.txRate, data.state, data.rxMin, data.rxMean,
      data.rxMax, data.txMin, data.txMean, data.txMax, data.samples);
}
void print(std::ostream& out, const LumoDispIntfSpec& spec) {
  row(out, spec.type, spec.hRes, spec.vRes, spec.pixelClock, spec.refreshRate);
}
void print(std::ostream& out, const LumoProcessMemUsage& usage) {
  row(out, usage.pid, usage.kind, usage.gpuMemory, usage.systemMemory);
  out << spare(usage.reserved);
}
void print(std::ostream& out, const LumoProcessGpuUtilization& share) {
  row(out, share.pid, share.kind, share.timestamp, share.gpu, share.memory, share.encoder, share.decoder);
}
void print(std::ostream& out, const LumoMpcProfile& profile) {
  row(out, profile.id, text(profile.name), profile.coreCount, profile.memory);
  out << spare(profile.instances) << spare(profile.reserved);
}
void print(std::ostream& out, const LumoMpcConfiguration& configuration) {
  row(out, configuration.id, text(configuration.name), configuration.profileCount);
  for (unsigned i = 0; i < LUMO_MPC_MAX_INSTANCES; ++i) {
    if (i < configuration.profileCount) {
      out << ' ' << configuration.profileIds[i];
    } else {
      out << spare(configuration.profileIds[i]);
    }
  }
}
void print(std::ostream& out, const LumoSablinkSpec& spec) {
  row(out, spec.linkCount, spec.linkSpeed, spec.version);
}
void print(std::ostream& out, const LumoSablinkLayout& layout) {
  row(out, layout.localPort, layout.remotePort);
}
void print(std::ostream& out, const LumoSablinkPath& path) {
  out << path.deviceCount << spare(path.reserved);
  for (unsigned i = 0; i < LUMO_SABLINK_PATH_SIZE; ++i) {
    if (i < path.deviceCount) {
      out << ' ';
      print(out, path.devices[i]);
    } else if (path.devices[i] != nullptr) {
      out << " (device behind the last)";
    }
  }
}
void print(std::ostream& out, const LumoSablinkPerfData& data) {
  row(out, data.rxBytes, data.txBytes, data.rxRate, data.txRate, data.samples);
  out << spare(data.reserved);
}
void print(std::ostream& out, const LumoSablinkSerdesStatus& status) {
  out << status.laneCount;
  for (const LumoSablinkLaneStatus& lane : status.lanes) {
    out << ", ";
    row(out, lane.state, lane.eyeWidth, lane.eyeHeight, lane.bitErrors);
  }
}
void print(std::ostream& out, const LumoVirtType& type) {
  row(out, text(type.id), text(type.deviceApi), text(type.name), type.maxWidth, type.maxHeight,
      type.maxEncode, type.maxDecode, type.framebuffer, type.maxInstances, type.maxVirtualDisplay);
}
void print(std::ostream& out, const LumoVgpuOverCommitInfo& info) {
  row(out, info.enabled, info.systemMemory);
}
void print(std::ostream& out, const LumoRetiredPage& page) {
  row(out, page.address, page.timestamp, page.cause, page.location, page.errorCount);
  out << spare(page.reserved) << spare(page.reserved2[0]) << spare(page.reserved2[1]);
}
void print(std::ostream& out, const LumoMemoryEdcCounters& counters) {
  row(out, counters.readErrors, counters.writeErrors, counters.readRetries, counters.writeRetries);
}
void print(std::ostream& out, const LumoVpuUtilization& utilization) {
  row(out, utilization.total, utilization.encoder, utilization.decoder);
}
void print(std::ostream& out, const LumoVpuSessionMetrics& metrics) {
  row(out, metrics.state, metrics.pid, metrics.codec, metrics.hRes, metrics.vRes, metrics.fps,
      metrics.bitrate, metrics.sessionId);
}
void print(std::ostream& out, const LumoEventData& event) {
  const LumoXidRecord& record = event.record;
  row(out, event.deviceIndex, event.eventType, text(event.uuid), record.version, record.xid,
      record.attributes, record.timestamp, record.pid,
      std::string(record.additional, strnlen(record.additional, sizeof record.additional)));
  out << spare(event.reserved);
}

}  // namespace tolk_test
