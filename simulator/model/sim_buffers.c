// Memory that driver and caller share: one buffer at a time for a descriptor. The descriptor keeps its number
// and size, so that copies of it have the same buffer and closing it leaves none behind.
#include "sim_actions.h"
#include "sim_cells.h"

enum {
  kPage = 4096,
  kMaxSize = 0xffff,
  kMaxId = 0xfffff,
};

static const uint64_t kUpperHalf = (uint64_t)0x4f56 << 32;

static uint64_t handleOf(uint32_t id) {
  return kUpperHalf | (uint64_t)id * kPage;
}

// In whole pages.
static uint64_t roomFor(uint64_t size) {
  return (size + kPage - 1) / kPage * kPage;
}

static uint64_t heldBy(SimCall* call) {
  return call->buffers ? call->buffers->held(call) : 0;
}

SimRefusal simAllocBuffer(const SimServing* serving) {
  SimCall* const call = serving->call;
  const uint64_t size = simGet(serving->bytes, 4);
  if (!call->buffers) return simRefuse(SIM_OUT_OF_MEMORY);
  if (simBufferOf(heldBy(call))) return simRefuse(SIM_BUSY);
  if (!size || size > kMaxSize) return simRefuse(SIM_BAD_ARGUMENT);
  const uint64_t room = roomFor(size);
  uint64_t told;
  const SimRefusal refusal = simReadNumber(serving->image, serving->node, SIM_MAP_SIZE, 0, room, &told);
  if (simIsRefused(refusal)) return refusal;
  const uint32_t id = serving->image->lastBuffer % kMaxId + 1;
  serving->image->lastBuffer = id;
  if (call->buffers->make(call, id, room)) return simRefuse(SIM_OUT_OF_MEMORY);
  call->buffers->hold(call, (uint64_t)id << 16 | size);
  simPut(serving->bytes + 4, 4, told);
  simPut(serving->bytes + 8, 8, handleOf(id));
  return refusal;
}

SimRefusal simFreeBuffer(const SimServing* serving) {
  SimCall* const call = serving->call;
  const uint64_t held = heldBy(call);
  const uint32_t id = simBufferOf(held);
  const uint64_t size = simGet(serving->bytes, 4);
  const int isIt = id && size == (held & kMaxSize) && simGet(serving->bytes + 8, 8) == handleOf(id);
  // A host may have told another room than there is.
  const int isWhole = simGet(serving->bytes + 4, 4) == roomFor(size) ||
                      simFindCell(serving->image, serving->node, SIM_MAP_SIZE, 0);
  if (!isIt || !isWhole) return simRefuse(SIM_BAD_ARGUMENT);
  call->buffers->hold(call, 0);
  call->buffers->drop(call, id);
  return simRefuse(SIM_DONE);
}

SimRefusal simFindBuffer(SimCall* call, uint64_t lowHandle, uint32_t size, uint32_t* id) {
  const uint64_t held = heldBy(call);
  *id = simBufferOf(held);
  const int isIt = *id && lowHandle == (handleOf(*id) & 0xffffffff) && (held & kMaxSize) >= size;
  return simRefuse(isIt ? SIM_DONE : SIM_BAD_ARGUMENT);
}
