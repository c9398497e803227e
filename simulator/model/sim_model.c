#include "sim_model.h"

#include "sim_cells.h"
#include "sim_faults.h"
#include "sim_records.h"

// Request numbers of the negotiation and of what has no table row.
#define REQUEST_PROBE_1 0xC00C4DAEu
#define REQUEST_PROBE_0 0xC0104DB0u
#define REQUEST_CALL_1 0xC0084DAFu
#define REQUEST_LIST_0 0xC1484DB1u
#define REQUEST_RENDER_PROBE 0xC010648Bu
#define REQUEST_RENDER_LIST 0xC148648Cu
#define REQUEST_VPU_INLINE 0xC0A0648Au
#define REQUEST_VPU 0xC028648Au

// Protocol 1.
enum {
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

// Protocol 0 and the render node.
enum {
  kPageEntries = 20,
  kPageEntrySize = 16,
  kPageHeadSize = 8,
  kPageSize = kPageHeadSize + kPageEntries * kPageEntrySize,
  kProbe1Size = 12,
  kProbe0Size = 16,
  kVpuInlineSize = 160,
  kVpuInlineHead = 8,
  kVpuSize = 40,
};

static int fail(SimCall* call, int error) {
  call->error = error;
  return error;
}

static int readRecord(SimCall* call, size_t size) {
  return call->readMemory(call, call->buffer, call->argument, size) ? fail(call, SIM_EFAULT) : 0;
}

static int writeRecord(SimCall* call, size_t size) {
  return call->writeMemory(call, call->argument, call->buffer, size) ? fail(call, SIM_EFAULT) : 0;
}

static SimNode* nodeOf(SimImage* image, const SimCall* call) {
  return SIM_AT(image, SimNode, nodes) + call->node;
}

static int isGone(SimImage* image, const SimCall* call) {
  const SimNode* const owner = SIM_AT(image, SimNode, nodes) + nodeOf(image, call)->owner;
  return !image->loaded || __atomic_load_n(&owner->gone, __ATOMIC_ACQUIRE);
}

// What a driver without a status word fails with.
static int errnoOf(uint32_t status) {
  switch (status) {
    case SIM_DONE:
      return 0;
    case SIM_NOT_SUPPORTED:
      return SIM_EOPNOTSUPP;
    case SIM_BUFFER_TOO_SMALL:
      return SIM_ENOSPC;
    case SIM_BUSY:
      return SIM_EBUSY;
    case SIM_OUT_OF_MEMORY:
      return SIM_ENOMEM;
    case SIM_DEVICE_LOST:
      return SIM_ENODEV;
    case SIM_FIRMWARE_FAILURE:
    case SIM_IO_FAILURE:
      return SIM_EIO;
    case SIM_NO_SUCH_OBJECT:
      return SIM_ENOENT;
    default:
      return SIM_EINVAL;
  }
}

// Faults that come before any work: true when the call ends here.
static int startFaults(SimImage* image, SimCall* call, SimCallFault* fault) {
  if (image->faults.count) {
    simCallFaults(image, call, fault);
    if (isGone(image, call)) {
      fail(call, SIM_ENODEV);
      return 1;
    }
  }
  if (!fault->error) return 0;
  fail(call, fault->error);
  return 1;
}

// Writes the reply, which may be of ones or shorter than it should be. `head` bytes are not touched by
// faults.
static int writeReply(SimCall* call, const SimCallFault* fault, size_t head, size_t size) {
  if (fault->ones) {
    for (size_t i = head; i < size; ++i) call->buffer[i] = 0xff;
  }
  if (fault->hasShort && fault->shortTo < size - head) size = head + (size_t)fault->shortTo;
  return writeRecord(call, size);
}

// ---- probes

static int answerProbe1(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_PROBE;
  if (startFaults(image, call, &fault)) return call->error;
  if (image->protocol != SIM_PROTOCOL_1) return fail(call, SIM_ENOTTY);
  if (readRecord(call, kProbe1Size)) return call->error;
  simPut(call->buffer + 0, 2, image->currentMajor);
  simPut(call->buffer + 2, 2, image->currentMinor);
  simPut(call->buffer + 4, 2, image->currentMajor);
  simPut(call->buffer + 6, 2, image->currentMinor);
  return writeReply(call, &fault, 0, kProbe1Size);
}

static int answerProbe0(SimImage* image, SimCall* call, uint32_t protocol, uint32_t listed) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_PROBE;
  if (startFaults(image, call, &fault)) return call->error;
  if (protocol != SIM_PROTOCOL_0) return fail(call, SIM_ENOTTY);
  if (readRecord(call, kProbe0Size)) return call->error;
  simPut(call->buffer + 0, 2, 0);
  simPut(call->buffer + 2, 2, 0);
  simPut(call->buffer + 4, 4, fault.hasCount ? fault.count : listed);
  return writeReply(call, &fault, 0, kProbe0Size);
}

// ---- protocol 0: list and records

static int answerPage(SimImage* image, SimCall* call, uint32_t protocol, const SimListed* listed,
                      uint32_t total) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_LIST;
  if (startFaults(image, call, &fault)) return call->error;
  if (protocol != SIM_PROTOCOL_0) return fail(call, SIM_ENOTTY);
  if (readRecord(call, kPageSize)) return call->error;
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
  return writeReply(call, &fault, 0, kPageSize);
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

static int answerRecord0(SimImage* image, SimCall* call) {
  const SimRecord* const record = image->protocol == SIM_PROTOCOL_1 ? 0 : simFindRecord0(call->request);
  SimCallFault fault = {0};
  call->kind = record ? SIM_CALL_RECORD : SIM_CALL_UNKNOWN;
  if (record) {
    call->hasInterface = 1;
    call->interfaceName = record->interfaceName;
    call->version = record->version;
  }
  if (startFaults(image, call, &fault)) return call->error;
  const int served =
      record && (image->protocol == SIM_PROTOCOL_0 ? isListedAs(image, record) : isOfOldestDriver(record));
  if (!served) return fail(call, SIM_ENOTTY);
  if (readRecord(call, record->size)) return call->error;
  SimSelection selection;
  simReadSelection(record, call->buffer, &selection);
  SimRefusal refusal = simServeRecord(image, nodeOf(image, call), record, &selection, call->buffer);
  if (fault.hasStatus) refusal = (SimRefusal){fault.status, 0};
  if (refusal.error || refusal.status) {
    return fail(call, refusal.error ? refusal.error : errnoOf(refusal.status));
  }
  if (fault.hasCount && record->rows) {
    simPut(call->buffer + record->rows->countOffset, record->rows->countWidth, fault.count);
  }
  return writeReply(call, &fault, 0, record->size);
}

// ---- protocol 1

static int answerStatus(SimCall* call, uint32_t status) {
  call->status = status;
  simPut(call->buffer + kStatusOffset, 4, status);
  return writeRecord(call, kHeaderSize);
}

static int answerScan(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_SCAN;
  if (startFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (bodySize != kScanBodySize) return answerStatus(call, SIM_BAD_SIZE);
  if (readRecord(call, kHeaderSize + kScanBodySize)) return call->error;
  const SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  uint32_t misc = 0;
  uint32_t render = 0;
  for (uint32_t i = 0; i < image->nodes.count; ++i) {
    misc += nodes[i].kind < SIM_NODE_RENDER;
    render += nodes[i].kind == SIM_NODE_RENDER;
  }
  simPut(call->buffer + 24, 2, fault.hasCount ? fault.count : image->listed.count);
  simPut(call->buffer + 26, 2, 1);
  simPut(call->buffer + 28, 2, misc);
  simPut(call->buffer + 30, 2, render);
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  return writeReply(call, &fault, kHeaderSize, kHeaderSize + kScanBodySize);
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
    if (call->writeMemory(call, to, call->buffer, portion * kListedSize)) return fail(call, SIM_EFAULT);
    to += portion * kListedSize;
    done += portion;
  }
  return 0;
}

static int answerList(SimImage* image, SimCall* call, uint64_t bodySize) {
  SimCallFault fault = {0};
  call->kind = SIM_CALL_LIST;
  if (startFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (bodySize < kListedSize || bodySize % kListedSize) return answerStatus(call, SIM_BAD_SIZE);
  if (readRecord(call, kHeaderSize + kListedSize)) return call->error;
  const uint64_t wanted = simGet(call->buffer + kHeaderSize, 2);
  if (bodySize / kListedSize - 1 < wanted) return answerStatus(call, SIM_BUFFER_TOO_SMALL);
  uint64_t delivered = wanted < image->listed.count ? wanted : image->listed.count;
  if (fault.hasShort && fault.shortTo / kListedSize < delivered) delivered = fault.shortTo / kListedSize;
  simPut(call->buffer + kHeaderSize, 2, fault.hasCount ? fault.count : delivered);
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  if (writeRecord(call, kHeaderSize + kListedSize)) return call->error;
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
    if (readRecord(call, kPayloadOffset)) return call->error;
    call->hasInterface = 1;
    call->interfaceName = (uint32_t)simGet(call->buffer + 24, 2);
    call->version = (uint16_t)simGet(call->buffer + 26, 1);
  }
  if (startFaults(image, call, &fault)) return call->error;
  if (fault.hasStatus) return answerStatus(call, fault.status);
  if (!call->hasInterface) return answerStatus(call, SIM_BAD_SIZE);
  const SimRecord* record = 0;
  const uint32_t refused = checkCall(image, call, bodySize, &record);
  if (refused) return answerStatus(call, refused);

  if (readRecord(call, kPayloadOffset + record->size)) return call->error;
  uint8_t* const payload = call->buffer + kPayloadOffset;
  SimSelection selection;
  simReadSelection(record, payload, &selection);
  const SimRefusal refusal = simServeRecord(image, nodeOf(image, call), record, &selection, payload);
  if (refusal.error) return fail(call, refusal.error);
  if (refusal.status) return answerStatus(call, refusal.status);
  if (fault.hasCount && record->rows) {
    simPut(payload + record->rows->countOffset, record->rows->countWidth, fault.count);
  }
  simPut(call->buffer + kStatusOffset, 4, SIM_DONE);
  return writeReply(call, &fault, kPayloadOffset, kPayloadOffset + record->size);
}

static int answerProtocol1(SimImage* image, SimCall* call) {
  call->kind = SIM_CALL_UNKNOWN;
  if (image->protocol != SIM_PROTOCOL_1) {
    SimCallFault fault = {0};
    return startFaults(image, call, &fault) ? call->error : fail(call, SIM_ENOTTY);
  }
  if (readRecord(call, kHeaderSize)) return call->error;
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
      return startFaults(image, call, &fault) ? call->error : fail(call, SIM_EINVAL);
    }
  }
}

// ---- video engine

// The reply of one operation, `size` bytes at `reply`; 0 or an errno.
static int serveVpu(SimImage* image, SimCall* call, const SimRecord* record, SimSelection* selection,
                    uint8_t* reply, const SimCallFault* fault) {
  const SimRefusal refusal = simServeRecord(image, nodeOf(image, call), record, selection, reply);
  if (refusal.error || refusal.status) return refusal.error ? refusal.error : errnoOf(refusal.status);
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
  if (startFaults(image, call, fault)) return 0;
  if (!record) fail(call, SIM_EINVAL);
  return record;
}

static int answerVpuInline(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (readRecord(call, kVpuInlineSize)) return call->error;
  SimSelection selection = {{(uint32_t)simGet(call->buffer + 2, 2), (uint32_t)simGet(call->buffer + 4, 4), 0},
                            2};
  const SimRecord* const record = startVpu(image, call, simGet(call->buffer, 2), &fault);
  if (!record) return call->error;
  uint8_t* const reply = call->buffer + kVpuInlineHead;
  for (uint32_t i = kVpuInlineHead; i < kVpuInlineSize; ++i) call->buffer[i] = 0;
  const int error = serveVpu(image, call, record, &selection, reply, &fault);
  return error ? fail(call, error) : writeReply(call, &fault, kVpuInlineHead, kVpuInlineSize);
}

static int answerVpu(SimImage* image, SimCall* call) {
  SimCallFault fault = {0};
  if (readRecord(call, kVpuSize)) return call->error;
  const uint64_t size = simGet(call->buffer + 4, 4);
  const uint64_t address = simGet(call->buffer + 8, 8);
  SimSelection selection = {
      {(uint32_t)simGet(call->buffer + 16, 4), (uint32_t)simGet(call->buffer + 20, 4), 0}, 2};
  const SimRecord* const record = startVpu(image, call, simGet(call->buffer, 4), &fault);
  if (!record) return call->error;
  if (size != record->size) return fail(call, SIM_EINVAL);
  const int error = serveVpu(image, call, record, &selection, call->buffer, &fault);
  if (error) return fail(call, error);
  const size_t given = fault.hasShort && fault.shortTo < size ? (size_t)fault.shortTo : (size_t)size;
  return call->writeMemory(call, address, call->buffer, given) ? fail(call, SIM_EFAULT) : 0;
}

// ---- entry

static int answerRender(SimImage* image, SimCall* call) {
  switch (call->request) {
    case REQUEST_RENDER_PROBE:
      return answerProbe0(image, call, image->renderProtocol, image->renderListed.count);
    case REQUEST_RENDER_LIST:
      return answerPage(image, call, image->renderProtocol, SIM_AT(image, SimListed, renderListed),
                        image->renderListed.count);
    case REQUEST_VPU_INLINE:
      return answerVpuInline(image, call);
    case REQUEST_VPU:
      return answerVpu(image, call);
    default:
      call->kind = SIM_CALL_UNKNOWN;
      return fail(call, SIM_ENOTTY);
  }
}

static int answerMisc(SimImage* image, SimCall* call) {
  switch (call->request) {
    case REQUEST_CALL_1:
      return answerProtocol1(image, call);
    case REQUEST_PROBE_1:
      return answerProbe1(image, call);
    case REQUEST_PROBE_0:
      return answerProbe0(image, call, image->protocol, image->listed.count);
    case REQUEST_LIST_0:
      return answerPage(image, call, image->protocol, SIM_AT(image, SimListed, listed), image->listed.count);
    default:
      return answerRecord0(image, call);
  }
}

int simIoctl(SimImage* image, SimCall* call) {
  call->error = 0;
  call->status = SIM_DONE;
  call->kind = SIM_CALL_UNKNOWN;
  call->hasInterface = 0;
  call->hangMs = 0;
  __atomic_fetch_add(&image->calls, 1, __ATOMIC_RELAXED);
  if (isGone(image, call)) return fail(call, SIM_ENODEV);
  switch (nodeOf(image, call)->kind) {
    case SIM_NODE_RENDER:
      return answerRender(image, call);
    case SIM_NODE_CARD:
      return fail(call, SIM_ENOTTY);
    default:
      return answerMisc(image, call);
  }
}

int simFindNode(const SimImage* image, uint64_t device, uint64_t inode) {
  const SimNode* const nodes = SIM_AT(image, const SimNode, nodes);
  for (uint32_t i = 0; i < image->nodes.count; ++i) {
    if (nodes[i].inode == inode && nodes[i].device == device) return (int)i;
  }
  return -1;
}

void simNodeName(const SimNode* node, char name[SIM_NODE_NAME]) {
  const char* prefix = node->kind == SIM_NODE_RENDER ? "renderD"
                       : node->kind == SIM_NODE_CARD ? "card"
                                                     : "ovgpu.";
  char digits[10];
  uint32_t count = 0;
  uint32_t number = node->number;
  do {
    digits[count++] = (char)('0' + number % 10);
    number /= 10;
  } while (number);
  while (*prefix) *name++ = *prefix++;
  while (count) *name++ = digits[--count];
  *name = 0;
}
