// MPC mode: which nodes a GPU has, and what they are, follows from the configuration that is set.
#include "sim_actions.h"
#include "sim_cells.h"

static SimGpu* gpuOf(const SimServing* serving) {
  return SIM_AT(serving->image, SimGpu, gpus) + serving->node->gpu;
}

static int hasState(const SimServing* serving, uint32_t state) {
  const SimFace* const faces = SIM_AT(serving->image, SimFace, faces);
  for (uint32_t i = 0; i < serving->image->faces.count; ++i) {
    if (faces[i].gpu == serving->node->gpu && faces[i].state == state) return 1;
  }
  return 0;
}

static uint32_t lowestConfiguration(const SimServing* serving) {
  const SimFace* const faces = SIM_AT(serving->image, SimFace, faces);
  uint32_t lowest = SIM_MPC_UNSET;
  for (uint32_t i = 0; i < serving->image->faces.count; ++i) {
    if (faces[i].gpu == serving->node->gpu && faces[i].state < lowest) lowest = faces[i].state;
  }
  return lowest;
}

static const SimFace* faceOf(const SimImage* image, uint32_t node, uint32_t state) {
  const SimFace* const faces = SIM_AT(image, const SimFace, faces);
  for (uint32_t i = 0; i < image->faces.count; ++i) {
    if (faces[i].node == node && faces[i].state == state) return &faces[i];
  }
  return 0;
}

// Values of the GPU's own node that were set stay what they are.
static void keepChanges(SimImage* image, const SimFace* before, const SimNode* after) {
  const SimCell* const cells = SIM_AT(image, SimCell, cells) + before->cellFirst;
  for (uint32_t i = 0; i < before->cellCount; ++i) {
    SimCell* const same = cells[i].changed ? simFindExactly(image, after, cells[i].value, cells[i].key) : 0;
    if (!same) continue;
    simSetNumber(same, cells[i].number);
    same->kind = cells[i].kind;
    same->initial = cells[i].initial;
    same->initialKind = cells[i].initialKind;
  }
}

static void show(SimImage* image, const SimGpu* gpu, const SimFace* face) {
  SimNode* const node = SIM_AT(image, SimNode, nodes) + face->node;
  node->kind = face->kind;
  node->cellFirst = face->cellFirst;
  node->cellCount = face->cellCount;
  node->present = 1;
  // Card and render node have the values of the misc node.
  if (node->kind >= SIM_NODE_RENDER) return;
  const int isOwn = face->node == gpu->node;
  if (isOwn && gpu->mpcNext == gpu->mpcState) return;
  SimCell* const cells = SIM_AT(image, SimCell, cells) + node->cellFirst;
  for (uint32_t i = 0; i < node->cellCount; ++i) simRestore(&cells[i]);
  const SimFace* const before = isOwn ? faceOf(image, face->node, gpu->mpcState) : 0;
  if (before) keepChanges(image, before, node);
}

// From one state to the next. Nothing that is read here is changed on the way, so that it can be begun again.
static void change(SimImage* image, uint32_t index) {
  SimGpu* const gpu = SIM_AT(image, SimGpu, gpus) + index;
  SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  const SimFace* const faces = SIM_AT(image, SimFace, faces);
  for (uint32_t i = 0; i < image->faces.count; ++i) {
    if (faces[i].gpu != index) continue;
    nodes[faces[i].node].present = 0;
    if (faces[i].node != gpu->node) simEndSessions(image, faces[i].node);
  }
  for (uint32_t i = 0; i < image->faces.count; ++i) {
    if (faces[i].gpu == index && faces[i].state == gpu->mpcNext) show(image, gpu, &faces[i]);
  }
  __atomic_signal_fence(__ATOMIC_SEQ_CST);
  __atomic_store_n(&gpu->mpcState, gpu->mpcNext, __ATOMIC_SEQ_CST);
}

void simSettle(SimImage* image) {
  const SimGpu* const gpus = SIM_AT(image, SimGpu, gpus);
  for (uint32_t i = 0; image->unsettled && i < image->gpus.count; ++i) {
    if (gpus[i].mpcNext != gpus[i].mpcState) change(image, i);
  }
}

// The caller may be killed at any point; what it has begun must be seen by whoever comes next.
static SimRefusal enter(const SimServing* serving, uint32_t state) {
  SimImage* const image = serving->image;
  const SimRefusal refusal = simRefuseWhileOthersOpen(serving);
  if (simIsRefused(refusal)) return refusal;
  __atomic_store_n(&image->unsettled, 1, __ATOMIC_SEQ_CST);
  __atomic_store_n(&gpuOf(serving)->mpcNext, state, __ATOMIC_SEQ_CST);
  __atomic_signal_fence(__ATOMIC_SEQ_CST);
  change(image, serving->node->gpu);
  return refusal;
}

SimRefusal simSwitchMpc(const SimServing* serving) {
  const uint32_t mode = serving->selection->keys[0];
  const int isOn = gpuOf(serving)->mpcState != SIM_MPC_OFF;
  const int isCapable = simNumberOf(serving->image, serving->node, SIM_MPC_CAPABLE, 0) != 0;
  if (!isCapable || !hasState(serving, SIM_MPC_OFF)) return simRefuse(SIM_NOT_SUPPORTED);
  if (mode > 1) return simRefuse(SIM_BAD_ARGUMENT);
  if (isOn == (int)mode) return simRefuse(SIM_DONE);
  return enter(serving, mode ? lowestConfiguration(serving) : (uint32_t)SIM_MPC_OFF);
}

SimRefusal simSetConfiguration(const SimServing* serving) {
  const uint32_t id = serving->selection->keys[0];
  if (id >= SIM_MPC_UNSET || !hasState(serving, id)) return simRefuse(SIM_NO_SUCH_OBJECT);
  return enter(serving, id);
}
