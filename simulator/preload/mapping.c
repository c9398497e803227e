// Mapping memory that is shared with the driver: the file of the buffer stands in for the node.
#include <errno.h>
#include <sys/mman.h>

#include "preload.h"

typedef void* (*Map)(void*, size_t, int, int, int, off_t);

static void* mapBuffer(void* at, size_t size, int access, int flags, int fd, off_t from) {
  const int buffer = mappingBuffer(bufferHeldAt(fd), size, from);
  if (buffer < 0) return MAP_FAILED;
  void* const result = REAL(Map, "mmap")(at, size, access, flags, buffer, 0);
  const int error = errno;
  shellClose(buffer);
  errno = error;
  return result;
}

static void* mapNode(void* at, size_t size, int access, int flags, int fd, off_t from, uint32_t node) {
  const int saved = errno;
  errno = mappingBegin(node);
  void* const result = errno ? MAP_FAILED : mapBuffer(at, size, access, flags, fd, from);
  const int error = result == MAP_FAILED ? errno : 0;
  if (!error) mappingRemember(0, (uint64_t)(uintptr_t)result, node);
  mappingTrace("mmap", node, error);
  errno = error ? error : saved;
  return result;
}

static void* mapAny(void* at, size_t size, int access, int flags, int fd, off_t from) {
  if (fd >= 0 && !(flags & MAP_ANONYMOUS)) {
    const int saved = errno;
    const Shell* const shell = shellGet();
    const int node = nodesFind(shell, fd);
    errno = saved;
    if (nodesHaveBuffers(shell, node)) return mapNode(at, size, access, flags, fd, from, (uint32_t)node);
  }
  return REAL(Map, "mmap")(at, size, access, flags, fd, from);
}

SHELL_EXPORT void* mmap(void* at, size_t size, int access, int flags, int fd, off_t from) {
  return mapAny(at, size, access, flags, fd, from);
}
SHELL_EXPORT void* mmap64(void* at, size_t size, int access, int flags, int fd, off64_t from) {
  return mapAny(at, size, access, flags, fd, from);
}

SHELL_EXPORT int munmap(void* at, size_t size) {
  typedef int (*Unmap)(void*, size_t);
  const int node = mappingForget(0, (uint64_t)(uintptr_t)at);
  const int failed = REAL(Unmap, "munmap")(at, size);
  if (node >= 0) {
    const int saved = errno;
    mappingTrace("munmap", (uint32_t)node, failed ? saved : 0);
    errno = saved;
  }
  return failed;
}
