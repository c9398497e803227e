// ioctl on the nodes of the host.
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "shell.h"

enum { kMiscType = 'M', kRenderType = 'd' };

// Addresses in the first page stand for a null pointer with an offset.
enum { kFirstAddress = 4096 };

static int readMemory(SimCall* call, void* to, uint64_t address, size_t size) {
  (void)call;
  if (address < kFirstAddress) return -1;
  memcpy(to, (const void*)(uintptr_t)address, size);
  return 0;
}

static int writeMemory(SimCall* call, uint64_t address, const void* from, size_t size) {
  (void)call;
  if (address < kFirstAddress) return -1;
  memcpy((void*)(uintptr_t)address, from, size);
  return 0;
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

SHELL_EXPORT int ioctl(int fd, unsigned long request, ...) {
  typedef int (*Ioctl)(int, unsigned long, ...);
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);

  // A request that went through an int comes with its sign extended.
  const uint32_t number = (uint32_t)request;
  const uint32_t type = number >> 8 & 0xff;
  if (type != kMiscType && type != kRenderType) return REAL(Ioctl, "ioctl")(fd, request, argument);
  const int saved = errno;
  const Shell* const shell = shellGet();
  const int node = nodesFind(shell, fd);
  errno = saved;
  if (node < 0) return REAL(Ioctl, "ioctl")(fd, request, argument);

  NodeCall own;
  SimCall* const call = &own.call;
  own.fd = fd;
  call->readMemory = readMemory;
  call->writeMemory = writeMemory;
  call->othersOpen = nodesOthersOpen;
  call->buffers = &buffersOfNodes;
  call->node = (uint32_t)node;
  call->request = number;
  call->argument = (uint64_t)(uintptr_t)argument;
  shellLock();
  const int error = simIoctl(shell->image, call);
  if (call->isKilled) {
    if (shell->traceFd >= 0) traceCall(shell, call);
    shellKill();
  }
  if (shell->image->unsettled) nodesArrange(shell);
  if (call->dropsEvents) eventsDrop(shell, SIM_AT(shell->image, const SimNode, nodes)[node].gpu);
  shellUnlock();
  if (call->hangMs) shellSleepMs(call->hangMs);
  if (shell->traceFd >= 0) traceCall(shell, call);
  errno = error ? error : saved;
  return error ? -1 : 0;
}

// Closing is looked at only to be traced.
SHELL_EXPORT int close(int fd) {
  typedef int (*Close)(int);
  char name[SIM_NODE_NAME];
  char path[SIM_NODE_NAME + 16];
  char spare[16];
  const int saved = errno;
  const Shell* const shell = shellGet();
  const int index = shell->traceFd < 0 ? -1 : nodesFind(shell, fd);
  errno = saved;
  const int failed = REAL(Close, "close")(fd);
  if (index < 0) return failed;
  const int error = errno;
  const SimNode* const node = SIM_AT(shell->image, const SimNode, nodes) + index;
  simNodeName(node, name);
  snprintf(path, sizeof path, "%s%s", node->kind >= SIM_NODE_RENDER ? "/dev/dri/" : "/dev/", name);
  shellTrace(shell, "close", path, failed ? errnoName(error, spare) : "ok");
  errno = error;
  return failed;
}
