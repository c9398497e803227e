// Protocol 1: one request for scan, list and interface calls, told apart by their header.
#include "sim_call.h"
#include "sim_cells.h"
#include "sim_records.h"

enum {
  kProbeSize = 12,
  kHeaderSize = 24,
  kStatusOffset = 4,
  kKindOffset = 8,
  kBodySizeOffset = 12,
  kScanBodySize = 24,
  kListedSize = 12,
  kBodyHeadSize = 16,
  kPayloadOffset = 40,
  kMaxBody = 1 << 20,
};

int simAnswerProbe1(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_PROBE;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (image->protocol != SIM_PROTOCOL_1) return simFail(call, SIM_ENOTTY);
  if (simReadRecord(call, kProbeSize)) return call->error;
  simPut(call->buffer + 0, 2, image->currentMajor);
  simPut(call->buffer + 2, 2, image->currentMinor);
  simPut(call->buffer + 4, 2, image->currentMajor);
  simPut(call->buffer + 6, 2, image->currentMinor);
  return simWriteReply(call, &fault, 0, kProbeSize);
}

static int answerStatus(SimCall* call, uint32_t status) {
  call->status = status;
  simPut(call->buffer + kStatusOffset, 4, status);
  return simWriteRecord(call, kHeaderSize);
}

static int answerScan(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_SCAN;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (bodySize != kScanBodySize) return answerStatus(call, SIM_BAD_SIZE);
  if (simReadRecord(call, kHeaderSize + kScanBodySize)) return call->error;
  const SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  uint32_t misc = 0;
  uint32_t render = 0;
  for (uint32_t i = 0; i < image->nodes.count; ++i) {
    misc += nodes[i].present && nodes[i].kind < SIM_NODE_RENDER;
    render += nodes[i].present && nodes[i].kind == SIM_NODE_RENDER;
  }
  simPut(call->buffer + 24, 2, fault.hasCount ? fault.count : image->listed.count);
  simPut(call->buffer + 26, 2, 1);
  simPut(call->buffer + 28, 2, misc);
  simPut(call->buffer + 30, 2, render);
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  return simWriteReply(call, &fault, kHeaderSize, kHeaderSize + kScanBodySize);
}

// The list may be longer than the buffer, so its entries go out in portions.
static int writeListed(SimImage* image, SimCall* call, uint32_t count, int ones) {
  enum { kPortion = SIM_MAX_RECORD / kListedSize };
  const SimListed* const listed = SIM_AT(image, SimListed, listed);
  uint64_t to = call->argument + kHeaderSize + kListedSize;
  for (uint32_t done = 0; done < count;) {
    const uint32_t portion = count - done < kPortion ? count - done : kPortion;
    for (uint32_t i = 0; i < portion; ++i) {
      uint8_t* const entry = call->buffer + i * kListedSize;
      simPut(entry, 2, ones ? 0xffff : listed[done + i].name);
      simPut(entry + 2, 1, ones ? 0xff : listed[done + i].maxVersion);
      simPut(entry + 3, 1, ones ? 0xff : listed[done + i].minVersion);
      simPut(entry + 4, 8, 0);
    }
    if (call->writeMemory(call, to, call->buffer, portion * kListedSize)) return simFail(call, SIM_EFAULT);
    to += portion * kListedSize;
    done += portion;
  }
  return 0;
}

static int answerList(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_LIST;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (bodySize < kListedSize || bodySize % kListedSize) return answerStatus(call, SIM_BAD_SIZE);
  if (simReadRecord(call, kHeaderSize + kListedSize)) return call->error;
  const uint64_t wanted = simGet(call->buffer + kHeaderSize, 2);
  if (bodySize / kListedSize - 1 < wanted) return answerStatus(call, SIM_BUFFER_TOO_SMALL);
  uint64_t delivered = wanted < image->listed.count ? wanted : image->listed.count;
  if (fault.hasShort && fault.shortTo / kListedSize < delivered) delivered = fault.shortTo / kListedSize;
  simPut(call->buffer + kHeaderSize, 2, fault.hasCount ? fault.count : delivered);
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  if (simWriteRecord(call, kHeaderSize + kListedSize)) return call->error;
  return writeListed(image, call, (uint32_t)delivered, fault.ones);
}

static uint32_t checkCall(SimImage* image, const SimCall* call, uint64_t bodySize, const SimRecord** record) {
  const SimListed* const listed = SIM_AT(image, SimListed, listed);
  const SimListed* entry = 0;
  for (uint32_t i = 0; i < image->listed.count && !entry; ++i) {
    if (listed[i].name == call->interfaceName) entry = &listed[i];
  }
  if (!entry) return SIM_UNKNOWN_INTERFACE;
  if (call->version < entry->minVersion || call->version > entry->maxVersion) return SIM_UNKNOWN_VERSION;
  *record = simFindRecord1(call->interfaceName, call->version);
  if (!*record) return SIM_UNKNOWN_VERSION;
  const uint64_t payload = simGet(call->buffer + 28, 4);
  if (payload != (*record)->size || bodySize != kBodyHeadSize + payload) return SIM_BAD_SIZE;
  return SIM_DONE;
}

static int answerCall(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_RECORD;
  if (bodySize >= kBodyHeadSize) {
    if (simReadRecord(call, kPayloadOffset)) return call->error;
    call->hasInterface = 1;
    call->interfaceName = (uint32_t)simGet(call->buffer + 24, 2);
    call->version = (uint16_t)simGet(call->buffer + 26, 1);
  }
  if (simStartFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (!call->hasInterface) return answerStatus(call, SIM_BAD_SIZE);
  const SimRecord* record = 0;
  const uint32_t refused = checkCall(image, call, bodySize, &record);
  if (refused) return answerStatus(call, refused);

  if (simReadRecord(call, kPayloadOffset + record->size)) return call->error;
  uint8_t* const payload = call->buffer + kPayloadOffset;
  SimSelection selection;
  simReadSelection(record, payload, &selection);
  const SimRefusal refusal = simServeRecord(image, call, record, &selection, payload);
  if (refusal.error) return simFail(call, refusal.error);
  if (refusal.status) return answerStatus(call, refusal.status);
  if (fault.hasCount && record->rows) {
    simPut(payload + record->rows->countOffset, record->rows->countWidth, fault.count);
  }
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  return simWriteReply(call, &fault, kPayloadOffset, kPayloadOffset + record->size);
}

int simAnswerCall1(SimImage* image, SimCall* call) {
  call->kind = SIM_CALL_UNKNOWN;
  if (image->protocol != SIM_PROTOCOL_1) {
    SimCallFault fault = {0};
    return simStartFaults(image, call, &fault) ? call->error : simFail(call, SIM_ENOTTY);
  }
  if (simReadRecord(call, kHeaderSize)) return call->error;
  const uint64_t bodySize = simGet(call->buffer + kBodySizeOffset, 4);
  if (bodySize > kMaxBody) return answerStatus(call, SIM_BAD_SIZE);
  switch (simGet(call->buffer + kKindOffset, 4)) {
    case 0:
      return answerScan(image, call, bodySize);
    case 1:
      return answerList(image, call, bodySize);
    case 2:
      return answerCall(image, call, bodySize);
    default: {
      SimCallFault fault = {0};
      return simStartFaults(image, call, &fault) ? call->error : simFail(call, SIM_EINVAL);
    }
  }
}
