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

// Values of the GPU's own node that were set stay what they are.
static void keepChanges(SimImage* image, const SimNode* before, const SimNode* after) {
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

static void show(const SimServing* serving, const SimFace* face) {
  SimImage* const image = serving->image;
  SimNode* const node = SIM_AT(image, SimNode, nodes) + face->node;
  const SimNode before = *node;
  node->kind = face->kind;
  node->cellFirst = face->cellFirst;
  node->cellCount = face->cellCount;
  node->present = 1;
  // Card and render node have the values of the misc node.
  if (node->kind >= SIM_NODE_RENDER) return;
  SimCell* const cells = SIM_AT(image, SimCell, cells) + node->cellFirst;
  for (uint32_t i = 0; i < node->cellCount; ++i) simRestore(&cells[i]);
  if (node == serving->node && before.cellFirst != node->cellFirst) keepChanges(image, &before, node);
}

static SimRefusal enter(const SimServing* serving, uint32_t state) {
  SimImage* const image = serving->image;
  SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  const SimFace* const faces = SIM_AT(image, SimFace, faces);
  const uint32_t own = serving->node->gpu;
  const SimRefusal refusal = simRefuseWhileOthersOpen(serving);
  if (simIsRefused(refusal)) return refusal;
  for (uint32_t i = 0; i < image->faces.count; ++i) {
    if (faces[i].gpu != own) continue;
    nodes[faces[i].node].present = 0;
    if (faces[i].node != serving->call->node) simEndSessions(image, faces[i].node);
  }
  for (uint32_t i = 0; i < image->faces.count; ++i) {
    if (faces[i].gpu == own && faces[i].state == state) show(serving, &faces[i]);
  }
  gpuOf(serving)->mpcState = state;
  serving->call->nodesChanged = 1;
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
