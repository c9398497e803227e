// The video engine, asked on the render node: a reply behind the arguments, or where the caller wants it.
#include "sim_call.h"
#include "sim_cells.h"
#include "sim_records.h"

enum {
  kInlineSize = 160,
  kInlineHead = 8,
  kPointedSize = 40,
};

// The reply of one operation, `size` bytes at `reply`; 0 or an errno.
static int serveVpu(SimImage* image, SimCall* call, const SimRecord* record, SimSelection* selection,
                    uint8_t* reply, const SimCallFault* fault) {
  const SimRefusal refusal = simServeRecord(image, simNodeOf(image, call), record, selection, reply);
  if (refusal.error || refusal.status) return refusal.error ? refusal.error : simErrnoOf(refusal.status);
  if (fault->hasCount && record->rows) {
    simPut(reply + record->rows->countOffset, record->rows->countWidth, fault->count);
  }
  if (fault->ones) {
    for (uint32_t i = 0; i < record->size; ++i) reply[i] = 0xff;
  }
  return 0;
}

static const SimRecord* startVpu(SimImage* image, SimCall* call, uint64_t operation, SimCallFault* fault) {
  const SimRecord* const record = operation > 0xffff ? 0 : simFindVpuRecord((uint32_t)operation);
  call->kind = SIM_CALL_RECORD;
  if (record) {
    call->hasInterface = 1;
    call->interfaceName = record->interfaceName;
    call->version = record->version;
  }
  if (simStartFaults(image, call, fault)) return 0;
  if (!record) simFail(call, SIM_EINVAL);
  return record;
}

int simAnswerVpuInline(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (simReadRecord(call, kInlineSize)) return call->error;
  SimSelection selection = {{(uint32_t)simGet(call->buffer + 2, 2), (uint32_t)simGet(call->buffer + 4, 4), 0},
                            2};
  const SimRecord* const record = startVpu(image, call, simGet(call->buffer, 2), &fault);
  if (!record) return call->error;
  uint8_t* const reply = call->buffer + kInlineHead;
  for (uint32_t i = kInlineHead; i < kInlineSize; ++i) call->buffer[i] = 0;
  const int error = serveVpu(image, call, record, &selection, reply, &fault);
  return error ? simFail(call, error) : simWriteReply(call, &fault, kInlineHead, kInlineSize);
}

int simAnswerVpu(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (simReadRecord(call, kPointedSize)) return call->error;
  const uint64_t size = simGet(call->buffer + 4, 4);
  const uint64_t address = simGet(call->buffer + 8, 8);
  SimSelection selection = {
      {(uint32_t)simGet(call->buffer + 16, 4), (uint32_t)simGet(call->buffer + 20, 4), 0}, 2};
  const SimRecord* const record = startVpu(image, call, simGet(call->buffer, 4), &fault);
  if (!record) return call->error;
  if (size != record->size) return simFail(call, SIM_EINVAL);
  const int error = serveVpu(image, call, record, &selection, call->buffer, &fault);
  if (error) return simFail(call, error);
  const size_t given = fault.hasShort && fault.shortTo < size ? (size_t)fault.shortTo : (size_t)size;
  return call->writeMemory(call, address, call->buffer, given) ? simFail(call, SIM_EFAULT) : 0;
}
