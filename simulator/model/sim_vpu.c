// The video engine, asked on the render node: a reply behind the arguments, or where the caller wants it.
#include "sim_call.h"
#include "sim_cells.h"
#include "sim_record_rows.h"

enum {
  kInlineSize = 160,
  kInlineHead = 8,
  kPointedSize = 40,
  kFirstPointedVersion = 2,
  kCores = 4,  // operation
};

// The places of the selection.
enum { kCoreKey, kInstanceKey, kVgpuKey, kVgpuValidKey };

// ---- sessions

static SimRefusal coreNumber(const SimServing* serving, uint32_t value, uint64_t core, uint64_t* number) {
  return simReadNumber(serving->image, serving->node, value, SIM_KEY(0, 0, 0, core), 0, number);
}

static uint64_t coreCount(const SimServing* serving) {
  return simNumberOf(serving->image, serving->node, SIM_VPU_CORE_COUNT, 0);
}

// Whether the session counts for the guest that the caller asks for.
static int isOfGuest(const SimServing* serving, uint64_t key) {
  if (!serving->selection->keys[kVgpuValidKey]) return 1;
  const SimCell* const guest = simFindExactly(serving->image, serving->node, SIM_VPU_SESSION_VGPU, key);
  return guest && guest->number == serving->selection->keys[kVgpuKey];
}

// A number of a session; 0 where there is none, or none of that guest's.
static SimRefusal sessionNumber(const SimServing* serving, uint32_t value, uint32_t core, uint32_t instance,
                                uint64_t* number) {
  const uint64_t key = SIM_KEY(core, instance, 0, 0);
  *number = 0;
  if (core > 0xffff || instance > 0xffff || !isOfGuest(serving, key)) return simRefuse(SIM_DONE);
  return simReadNumber(serving->image, serving->node, value, key, 0, number);
}

static SimRefusal serveStates(const SimServing* serving) {
  const SimRows* const rows = serving->record->rows;
  const uint32_t core = serving->selection->keys[kCoreKey];
  uint64_t count = 0;
  SimRefusal refusal = simRefuse(SIM_DONE);
  if (core < coreCount(serving)) refusal = coreNumber(serving, SIM_VPU_CORE_INSTANCES, core, &count);
  if (count > rows->max) count = rows->max;
  if (rows->countOffset) simPut(serving->bytes, 4, core);
  simPut(serving->bytes + rows->countOffset, rows->countWidth, count);
  for (uint32_t i = 0; i < count && !simIsRefused(refusal); ++i) {
    uint64_t state;
    refusal = sessionNumber(serving, SIM_VPU_SESSION_STATE, core, i, &state);
    simPut(serving->bytes + rows->base + i * rows->stride, 4, state);
  }
  return refusal;
}

// The place of an instance when those of all cores of its kind are numbered in order.
static SimRefusal sessionId(const SimServing* serving, uint32_t core, uint32_t instance, uint64_t* id) {
  uint64_t kind;
  SimRefusal refusal = coreNumber(serving, SIM_VPU_CORE_KIND, core, &kind);
  *id = instance;
  for (uint32_t i = 0; i < core && !simIsRefused(refusal); ++i) {
    uint64_t other;
    uint64_t instances = 0;
    refusal = coreNumber(serving, SIM_VPU_CORE_KIND, i, &other);
    if (!simIsRefused(refusal)) refusal = coreNumber(serving, SIM_VPU_CORE_INSTANCES, i, &instances);
    if (other == kind) *id += instances;
  }
  return refusal;
}

static SimRefusal serveMetrics(const SimServing* serving) {
  static const uint16_t values[] = {SIM_VPU_SESSION_STATE,  SIM_VPU_SESSION_PID,   SIM_VPU_SESSION_CODEC,
                                    SIM_VPU_SESSION_H_RES,  SIM_VPU_SESSION_V_RES, SIM_VPU_SESSION_FPS,
                                    SIM_VPU_SESSION_BITRATE};
  enum { kIdAt = 28, kReservedAt = 32 };
  const uint32_t core = serving->selection->keys[kCoreKey];
  const uint32_t instance = serving->selection->keys[kInstanceKey];
  uint64_t number;
  if (core >= coreCount(serving)) return simRefuse(SIM_NO_SUCH_OBJECT);
  SimRefusal refusal = coreNumber(serving, SIM_VPU_CORE_INSTANCES, core, &number);
  if (!simIsRefused(refusal) && instance >= number) return simRefuse(SIM_NO_SUCH_OBJECT);
  for (uint32_t i = 0; i < sizeof values / sizeof values[0] && !simIsRefused(refusal); ++i) {
    refusal = sessionNumber(serving, values[i], core, instance, &number);
    simPut(serving->bytes + 4 * i, 4, number);
  }
  if (!simIsRefused(refusal)) refusal = sessionId(serving, core, instance, &number);
  simPut(serving->bytes + kIdAt, 4, number);
  simPut(serving->bytes + kReservedAt, 4, 0);
  return refusal;
}

// ---- replies, by operation

static const SimField utilizationFields[] = {OUT_ARRAY(0, 4, 16, VPU_UTILIZATION)};
static const SimField clockFields[] = {OUT_SPREAD(0, 4, 16, 8, VPU_CLOCK)};
static const SimField coreRow[] = {
    OUT(0, 1, VPU_CORE_KIND),
    OUT(1, 1, VPU_CORE_THREADS),
    OUT(2, 2, VPU_CORE_INSTANCES),
    OUT(4, 4, VPU_CORE_CLOCK),
};
ROWS(coreRows, 0, 4, VPU_CORE_COUNT, 4, 8, 16, coreRow);
static const SimRows stateRows2 = {.countOffset = 0, .countWidth = 4, .base = 4, .stride = 4, .max = 32};
static const SimRows stateRows3 = {.countOffset = 4, .countWidth = 4, .base = 8, .stride = 4, .max = 36};

// A core that is absent reads all ones.
#define REPLY(operation, name, edition, bytes, table)                                                 \
  {                                                                                                   \
    .request = operation, .interfaceName = name, .version = edition, .size = bytes,                   \
    .nodes = SIM_NODE_RENDER, .needs = SIM_BLANK_ONES, .fields = table, .fieldCount = COUNT_OF(table) \
  }
#define REPLY_BY(operation, name, edition, bytes, list, act)                                      \
  {                                                                                               \
    .request = operation, .interfaceName = name, .version = edition, .size = bytes,               \
    .nodes = SIM_NODE_RENDER, .needs = SIM_BLANK_ONES | SIM_OWN_ROWS, .rows = list, .action = act \
  }

static const SimRecord vpuRecords[] = {
    REPLY(0, 100000, 2, 64, utilizationFields),
    REPLY_BY(1, 100001, 2, 36, 0, serveMetrics),
    REPLY_BY(2, 100002, 2, 132, &stateRows2, serveStates),
    REPLY_BY(2, 100002, 3, 152, &stateRows3, serveStates),
    REPLY(3, 100003, 2, 128, clockFields),
    {.request = 4,
     .interfaceName = 100004,
     .version = 2,
     .size = 132,
     .nodes = SIM_NODE_RENDER,
     .needs = SIM_BLANK_ONES,
     .rows = &coreRows},
};

const SimRecord* simVpuRecords(uint32_t* count) {
  *count = COUNT_OF(vpuRecords);
  return vpuRecords;
}

// The reply of the highest version: that of the inline form too.
static const SimRecord* newestReply(uint64_t operation) {
  const SimRecord* newest = 0;
  for (uint32_t i = 0; i < COUNT_OF(vpuRecords); ++i) {
    if (vpuRecords[i].request == operation) newest = &vpuRecords[i];
  }
  return newest;
}

static const SimRecord* replyOfSize(uint64_t operation, uint64_t size) {
  for (uint32_t i = 0; i < COUNT_OF(vpuRecords); ++i) {
    if (vpuRecords[i].request == operation && vpuRecords[i].size == size) return &vpuRecords[i];
  }
  return 0;
}

// The version of an interface, as the driver lists it. The oldest drivers have version 0 of all.
static int versionOf(SimImage* image, uint32_t interfaceName, uint16_t* version) {
  const SimListed* const listed = SIM_AT(image, SimListed, renderListed);
  *version = 0;
  if (image->renderProtocol == SIM_PROTOCOL_NONE) return 1;
  for (uint32_t i = 0; i < image->renderListed.count; ++i) {
    *version = listed[i].maxVersion;
    if (listed[i].name == interfaceName) return 1;
  }
  return 0;
}

// ---- calls

// The reply of one operation, `size` bytes at `reply`; 0 or an errno.
static int serveVpu(SimImage* image, SimCall* call, const SimRecord* record, const SimSelection* selection,
                    uint8_t* reply, const SimCallFault* fault) {
  const SimRefusal refusal = simServeRecord(image, call, record, selection, reply);
  if (simIsRefused(refusal)) return refusal.error ? refusal.error : simErrnoOf(refusal.status);
  if (fault->hasCount && record->rows) {
    simPut(reply + record->rows->countOffset, record->rows->countWidth, fault->count);
  }
  if (fault->ones) {
    for (uint32_t i = 0; i < record->size; ++i) reply[i] = 0xff;
  }
  return 0;
}

// Whether the listed version asks so. Nothing is sent for the cores in their first version.
static int isFormOf(uint16_t version, const SimRecord* record, int isInline) {
  if (!isInline) return version == record->version;
  return version < kFirstPointedVersion && (version || record->request != kCores);
}

// Names the call for faults and trace; true when it ends here. A record of the wrong size is null.
static int startVpu(SimImage* image, SimCall* call, const SimRecord* record, uint64_t operation, int isInline,
                    SimCallFault* fault) {
  const SimRecord* const named = record ? record : newestReply(operation);
  int isListed = 0;
  call->kind = SIM_CALL_RECORD;
  if (named) {
    call->hasInterface = 1;
    call->interfaceName = named->interfaceName;
    isListed = versionOf(image, named->interfaceName, &call->version);
  }
  call->isUnexpected = !record || !isListed || !isFormOf(call->version, record, isInline);
  if (simStartFaults(image, call, fault)) return 1;
  if (call->isUnexpected) simFail(call, SIM_EINVAL);
  return call->isUnexpected;
}

int simAnswerVpuInline(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (simReadRecord(call, kInlineSize)) return call->error;
  const SimSelection selection = {
      {(uint32_t)simGet(call->buffer + 2, 2), (uint32_t)simGet(call->buffer + 4, 4), 0, 0}, SIM_MAX_KEYS};
  const uint64_t operation = simGet(call->buffer, 2);
  const SimRecord* const record = newestReply(operation);
  if (startVpu(image, call, record, operation, 1, &fault)) return call->error;
  uint8_t* const reply = call->buffer + kInlineHead;
  for (uint32_t i = kInlineHead; i < kInlineSize; ++i) call->buffer[i] = 0;
  const int error = serveVpu(image, call, record, &selection, reply, &fault);
  return error ? simFail(call, error) : simWriteReply(call, &fault, kInlineHead, kInlineSize);
}

int simAnswerVpu(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (simReadRecord(call, kPointedSize)) return call->error;
  const uint64_t operation = simGet(call->buffer, 4);
  const uint64_t size = simGet(call->buffer + 4, 4);
  const uint64_t address = simGet(call->buffer + 8, 8);
  SimSelection selection = {{0}, SIM_MAX_KEYS};
  for (uint32_t i = 0; i < SIM_MAX_KEYS; ++i) {
    selection.keys[i] = (uint32_t)simGet(call->buffer + 16 + 4 * i, 4);
  }
  const SimRecord* const record = replyOfSize(operation, size);
  if (startVpu(image, call, record, operation, 0, &fault)) return call->error;
  const int error = serveVpu(image, call, record, &selection, call->buffer, &fault);
  if (error) return simFail(call, error);
  const size_t given = fault.hasShort && fault.shortTo < size ? (size_t)fault.shortTo : (size_t)size;
  return call->writeMemory(call, address, call->buffer, given) ? simFail(call, SIM_EFAULT) : 0;
}
