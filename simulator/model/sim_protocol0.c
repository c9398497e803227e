// Protocol 0: probe, list in pages, a request for each record. The render node has the first two.
#include "sim_call.h"
#include "sim_cells.h"
#include "sim_records.h"

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

static int isListedAs(SimImage* image, const SimRecord* record) {
  const SimListed* const listed = SIM_AT(image, SimListed, listed);
  for (uint32_t i = 0; i < image->listed.count; ++i) {
    if (listed[i].name == record->interfaceName) {
      return listed[i].minVersion <= record->version && record->version <= listed[i].maxVersion;
    }
  }
  return 0;
}

int simAnswerRecord0(SimImage* image, SimCall* call) {
  const SimRecord* const record = image->protocol == SIM_PROTOCOL_1 ? 0 : simFindRecord0(call->request);
  SimCallFault fault = {0};
  call->kind = record ? SIM_CALL_RECORD : SIM_CALL_UNKNOWN;
  if (record) {
    call->hasInterface = 1;
    call->interfaceName = record->interfaceName;
    call->version = record->version;
  }
  if (simStartFaults(image, call, &fault)) return call->error;
  const int served =
      record && (image->protocol == SIM_PROTOCOL_0 ? isListedAs(image, record) : isOfOldestDriver(record));
  if (!served) return simFail(call, SIM_ENOTTY);
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
