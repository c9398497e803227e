// ioctl on the nodes of the host.
#include <errno.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "preload.h"

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

SHELL_EXPORT int ioctl(int fd, unsigned long request, ...) {
  typedef int (*Ioctl)(int, unsigned long, ...);
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);

  // A request that went through an int comes with its sign extended.
  const uint32_t number = (uint32_t)request;
  if (!callIsForNodes(number)) return REAL(Ioctl, "ioctl")(fd, request, argument);
  const int saved = errno;
  const Shell* const shell = shellGet();
  const int node = nodesFind(shell, fd);
  errno = saved;
  if (node < 0) return REAL(Ioctl, "ioctl")(fd, request, argument);

  NodeCall own;
  own.fd = fd;
  own.call.readMemory = readMemory;
  own.call.writeMemory = writeMemory;
  own.call.buffers = &buffersOfNodes;
  own.call.node = (uint32_t)node;
  own.call.request = number;
  own.call.argument = (uint64_t)(uintptr_t)argument;
  const int error = callAnswer(shell, &own);
  errno = error ? error : saved;
  return error ? -1 : 0;
}

// Closing is looked at only to be traced.
SHELL_EXPORT int close(int fd) {
  typedef int (*Close)(int);
  const int saved = errno;
  const Shell* const shell = shellGet();
  const int node = shell->traceFd < 0 ? -1 : nodesFind(shell, fd);
  errno = saved;
  const int failed = REAL(Close, "close")(fd);
  if (node < 0) return failed;
  const int error = errno;
  nodesTraceClose(shell, (uint32_t)node, failed ? error : 0);
  errno = error;
  return failed;
}
