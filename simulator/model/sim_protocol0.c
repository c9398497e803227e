// Protocol 0: probe, list in pages, a request for each record. The render node has the first two.
#include "sim_call.h"
#include "sim_cells.h"

enum {
  kProbeSize = 16,
  kPageEntries = 20,
  kPageEntrySize = 16,
  kPageHeadSize = 8,
  kPageSize = kPageHeadSize + kPageEntries * kPageEntrySize,
};

int simAnswerProbe0(SimImage* image, SimCall* call, uint32_t protocol, uint32_t listed) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_PROBE;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (protocol != SIM_PROTOCOL_0) return simFail(call, SIM_ENOTTY);
  if (simReadRecord(call, kProbeSize)) return call->error;
  simPut(call->buffer + 0, 2, 0);
  simPut(call->buffer + 2, 2, 0);
  simPut(call->buffer + 4, 4, fault.hasCount ? fault.count : listed);
  return simWriteReply(call, &fault, 0, kProbeSize);
}

int simAnswerPage(SimImage* image, SimCall* call, uint32_t protocol, const SimListed* listed,
                  uint32_t total) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_LIST;
  call->isUnexpected = protocol != SIM_PROTOCOL_0;
  if (simStartFaults(image, call, &fault)) return call->error;
  if (protocol != SIM_PROTOCOL_0) return simFail(call, SIM_ENOTTY);
  if (simReadRecord(call, kPageSize)) return call->error;
  const uint64_t start = simGet(call->buffer, 4);
  uint64_t count = simGet(call->buffer + 4, 4);
  if (count > kPageEntries) count = kPageEntries;
  if (start >= total) {
    count = 0;
  } else if (count > total - start) {
    count = total - start;
  }
  for (uint32_t i = 0; i < count; ++i) {
    uint8_t* const entry = call->buffer + kPageHeadSize + i * kPageEntrySize;
    simPut(entry, 4, listed[start + i].name);
    simPut(entry + 4, 4, listed[start + i].maxVersion);
  }
  simPut(call->buffer + 4, 4, fault.hasCount ? fault.count : count);
  return simWriteReply(call, &fault, 0, kPageSize);
}

static int isOfOldestDriver(const SimRecord* record) {
  return record->version == 0 && (record->interfaceName == 2 || record->interfaceName == 3 ||
                                  record->interfaceName == 4 || record->interfaceName == 6);
}

static int isListedAs(SimImage* image, uint32_t name, uint16_t version) {
  const SimListed* const listed = SIM_AT(image, SimListed, listed);
  for (uint32_t i = 0; i < image->listed.count; ++i) {
    if (listed[i].name == name) return listed[i].minVersion <= version && version <= listed[i].maxVersion;
  }
  return 0;
}

int simOffers0(SimImage* image, const SimCall* call, const SimRecord* record) {
  const uint32_t family = SIM_AT(image, SimGpu, gpus)[simNodeOf(image, call)->gpu].family;
  if (record->families && !(record->families >> family & 1)) return 0;
  if (image->protocol == SIM_PROTOCOL_NONE) return isOfOldestDriver(record);
  if (image->protocol != SIM_PROTOCOL_0) return 0;
  if (record->interfaceName && isListedAs(image, record->interfaceName, record->version)) return 1;
  for (const uint16_t* name = record->further; name && *name; ++name) {
    if (isListedAs(image, *name, record->version)) return 1;
  }
  return 0;
}

// Versions of an interface may share a number: the one that is offered, or else the first of that number.
static const SimRecord* findRecord(SimImage* image, SimCall* call) {
  uint32_t count;
  const SimRecord* const records = simRecords0(&count);
  const SimRecord* found = 0;
  call->isUnexpected = 1;
  for (uint32_t i = 0; i < count && call->isUnexpected; ++i) {
    if (records[i].request != call->request) continue;
    call->isUnexpected = !simOffers0(image, call, &records[i]);
    if (!found || !call->isUnexpected) found = &records[i];
  }
  return image->protocol == SIM_PROTOCOL_1 ? 0 : found;
}

int simAnswerRecord0(SimImage* image, SimCall* call) {
  const SimRecord* const record = findRecord(image, call);
  SimCallFault fault = {0};
  // What belongs to no interface is about memory that is shared.
  call->kind = !record ? SIM_CALL_UNKNOWN : record->interfaceName ? SIM_CALL_RECORD : SIM_CALL_MEMORY;
  if (record && record->interfaceName) {
    call->hasInterface = 1;
    call->interfaceName = record->interfaceName;
    call->version = record->version;
  }
  if (simStartFaults(image, call, &fault)) return call->error;
  if (call->isUnexpected) return simFail(call, SIM_ENOTTY);
  if (simReadRecord(call, record->size)) return call->error;
  SimSelection selection;
  simReadSelection(record, call->buffer, &selection);
  SimRefusal refusal = simServeRecord(image, call, record, &selection, call->buffer);
  if (fault.hasStatus) refusal = (SimRefusal){fault.status, 0};
  if (refusal.error || refusal.status) {
    return simFail(call, refusal.error ? refusal.error : simErrnoOf(refusal.status));
  }
  if (fault.hasCount && record->rows) {
    simPut(call->buffer + record->rows->countOffset, record->rows->countWidth, fault.count);
  }
  return simWriteReply(call, &fault, 0, record->size);
}
