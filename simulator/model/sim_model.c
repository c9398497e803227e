#include "sim_model.h"

#include "sim_call.h"

// Request numbers of the negotiation and of what has no table row.
#define REQUEST_PROBE_1 0xC00C4DAEu
#define REQUEST_PROBE_0 0xC0104DB0u
#define REQUEST_CALL_1 0xC0084DAFu
#define REQUEST_LIST_0 0xC1484DB1u
#define REQUEST_RENDER_PROBE 0xC010648Bu
#define REQUEST_RENDER_LIST 0xC148648Cu
#define REQUEST_VPU_INLINE 0xC0A0648Au
#define REQUEST_VPU 0xC028648Au
#define REQUEST_SMC 0xC1084D01u

static int answerRender(SimImage* image, SimCall* call) {
  switch (call->request) {
    case REQUEST_RENDER_PROBE:
      return simAnswerProbe0(image, call, image->renderProtocol, image->renderListed.count);
    case REQUEST_RENDER_LIST:
      return simAnswerPage(image, call, image->renderProtocol, SIM_AT(image, SimListed, renderListed),
                           image->renderListed.count);
    case REQUEST_VPU_INLINE:
      return simAnswerVpuInline(image, call);
    case REQUEST_VPU:
      return simAnswerVpu(image, call);
    default:
      call->isUnexpected = 1;
      return simFail(call, SIM_ENOTTY);
  }
}

static int answerMisc(SimImage* image, SimCall* call) {
  switch (call->request) {
    case REQUEST_CALL_1:
      return simAnswerCall1(image, call);
    case REQUEST_PROBE_1:
      return simAnswerProbe1(image, call);
    case REQUEST_PROBE_0:
      return simAnswerProbe0(image, call, image->protocol, image->listed.count);
    case REQUEST_LIST_0:
      return simAnswerPage(image, call, image->protocol, SIM_AT(image, SimListed, listed),
                           image->listed.count);
    case REQUEST_SMC:
      return simAnswerSmc(image, call);
    default:
      return simAnswerRecord0(image, call);
  }
}

static int answer(SimImage* image, SimCall* call) {
  switch (simNodeOf(image, call)->kind) {
    case SIM_NODE_RENDER:
      return answerRender(image, call);
    case SIM_NODE_CARD:
      call->isUnexpected = 1;
      return simFail(call, SIM_ENOTTY);
    default:
      return answerMisc(image, call);
  }
}

int simIoctl(SimImage* image, SimCall* call) {
  call->error = 0;
  call->status = SIM_DONE;
  call->kind = SIM_CALL_UNKNOWN;
  call->hasInterface = 0;
  call->dropsEvents = 0;
  call->isUnexpected = 0;
  call->isKilled = 0;
  call->command = 0;
  call->hangMs = 0;
  __atomic_fetch_add(&image->calls, 1, __ATOMIC_RELAXED);
  if (simIsGone(image, call)) return simFail(call, SIM_ENODEV);
  answer(image, call);
  if (call->isUnexpected) simNoteUnexpected(image, call);
  return call->error;
}

const char* simKindName(uint32_t kind) {
  static const char* const names[] = {"probe", "scan", "list", "record", "smc", "memory", "unknown"};
  return kind < sizeof names / sizeof names[0] ? names[kind] : 0;
}

int simFindNode(const SimImage* image, uint64_t device, uint64_t inode) {
  const SimNode* const nodes = SIM_AT(image, const SimNode, nodes);
  for (uint32_t i = 0; i < image->nodes.count; ++i) {
    if (nodes[i].inode == inode && nodes[i].device == device) return (int)i;
  }
  return -1;
}

int simIsPresent(const SimImage* image, uint32_t node) {
  const SimNode* const nodes = SIM_AT(image, const SimNode, nodes);
  return image->loaded && nodes[node].present &&
         !__atomic_load_n(&nodes[nodes[node].owner].gone, __ATOMIC_ACQUIRE);
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
