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

// A call whose form the driver does not know.
static int answerUnknownForm(SimCall* call, uint32_t status) {
  call->isUnexpected = 1;
  return answerStatus(call, status);
}

static int answerScan(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_SCAN;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (bodySize != kScanBodySize) return answerUnknownForm(call, SIM_BAD_SIZE);
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
  if (bodySize < kListedSize || bodySize % kListedSize) return answerUnknownForm(call, SIM_BAD_SIZE);
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

// What the driver did not list, or not so, is unexpected; what it lists and has no record of is its own
// fault.
static uint32_t checkCall(SimImage* image, SimCall* call, uint64_t bodySize, const SimRecord** record) {
  const SimListed* const listed = SIM_AT(image, SimListed, listed);
  const SimListed* entry = 0;
  for (uint32_t i = 0; i < image->listed.count && !entry; ++i) {
    if (listed[i].name == call->interfaceName) entry = &listed[i];
  }
  call->isUnexpected = 1;
  if (!entry) return SIM_UNKNOWN_INTERFACE;
  if (call->version < entry->minVersion || call->version > entry->maxVersion) return SIM_UNKNOWN_VERSION;
  *record = simFindRecord1(call->interfaceName, call->version);
  call->isUnexpected = 0;
  if (!*record) return SIM_UNKNOWN_VERSION;
  const uint64_t payload = simGet(call->buffer + 28, 4);
  if (payload == (*record)->size && bodySize == kBodyHeadSize + payload) return SIM_DONE;
  call->isUnexpected = 1;
  return SIM_BAD_SIZE;
}

static int answerCall(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  const SimRecord* record = 0;
  uint32_t refused = SIM_BAD_SIZE;
  call->kind = SIM_CALL_RECORD;
  call->isUnexpected = 1;
  if (bodySize >= kBodyHeadSize) {
    if (simReadRecord(call, kPayloadOffset)) return call->error;
    call->hasInterface = 1;
    call->interfaceName = (uint32_t)simGet(call->buffer + 24, 2);
    call->version = (uint16_t)simGet(call->buffer + 26, 1);
    refused = checkCall(image, call, bodySize, &record);
  }
  if (simStartFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
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
  // A driver whose lowest protocol is a later one serves none of this.
  if (image->protocol != SIM_PROTOCOL_1 || image->currentMinor > 1) {
    SimCallFault fault = {0};
    call->isUnexpected = 1;
    return simStartFaults(image, call, &fault) ? call->error : simFail(call, SIM_ENOTTY);
  }
  if (simReadRecord(call, kHeaderSize)) return call->error;
  const uint64_t bodySize = simGet(call->buffer + kBodySizeOffset, 4);
  if (bodySize > kMaxBody) return answerUnknownForm(call, SIM_BAD_SIZE);
  switch (simGet(call->buffer + kKindOffset, 4)) {
    case 0:
      return answerScan(image, call, bodySize);
    case 1:
      return answerList(image, call, bodySize);
    case 2:
      return answerCall(image, call, bodySize);
    default: {
      SimCallFault fault = {0};
      call->isUnexpected = 1;
      return simStartFaults(image, call, &fault) ? call->error : simFail(call, SIM_EINVAL);
    }
  }
}
