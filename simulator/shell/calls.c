// Calls on the nodes of the host.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "shell.h"

enum { kMiscType = 'M', kRenderType = 'd' };

int callIsForNodes(uint32_t request) {
  const uint32_t type = request >> 8 & 0xff;
  return type == kMiscType || type == kRenderType;
}

static void traceCall(const Shell* shell, const SimCall* call) {
  char name[SIM_NODE_NAME];
  char subject[96];
  char result[48];
  char spare[16];
  simNodeName(SIM_AT(shell->image, const SimNode, nodes) + call->node, name);
  const char* const kind = simKindName(call->kind);
  const uint32_t what = call->hasInterface ? call->interfaceName : call->request;
  if (call->kind == SIM_CALL_SMC) {
    snprintf(subject, sizeof subject, call->hasInterface ? "%s %s %u 0x%02x" : "%s %s 0x%08x 0x%02x", name,
             kind, what, call->command);
  } else if (call->hasInterface) {
    snprintf(subject, sizeof subject, "%s %s %u %u", name, kind, what, call->version);
  } else {
    snprintf(subject, sizeof subject, "%s %s 0x%08x -", name, kind, what);
  }
  if (call->isKilled) {
    snprintf(result, sizeof result, "killed");
  } else if (call->error) {
    snprintf(result, sizeof result, "%s", errnoName(call->error, spare));
  } else if (call->status) {
    snprintf(result, sizeof result, "status=%u", call->status);
  } else {
    snprintf(result, sizeof result, "ok");
  }
  if (call->isUnexpected) strcat(result, " unexpected");
  shellTrace(shell, "ioctl", subject, result);
}

int callAnswer(const Shell* shell, NodeCall* own) {
  SimCall* const call = &own->call;
  call->othersOpen = nodesOthersOpen;
  shellLock();
  const int error = simIoctl(shell->image, call);
  if (call->isKilled) {
    if (shell->traceFd >= 0) traceCall(shell, call);
    shellKill(1);
  }
  if (shell->image->unsettled) nodesArrange(shell);
  if (call->dropsEvents) queuesEmpty(shell, SIM_AT(shell->image, const SimNode, nodes)[call->node].gpu);
  shellUnlock();
  if (call->hangMs) shellSleepMs(call->hangMs);
  if (shell->traceFd >= 0) traceCall(shell, call);
  return error;
}
