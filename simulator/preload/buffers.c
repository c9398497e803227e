// Memory that a program shares with the driver: a file below the host's folder "buffers" for each buffer,
// which the program maps in place of the node. The number of the buffer is where the node's descriptor
// stands: that is the same for all copies of a descriptor, and gone when the last one is closed.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "shell.h"

static int bufferPath(uint32_t id, char path[PATH_MAX]) {
  const Shell* const shell = shellGet();
  const int root = (int)(shell->treeLength - strlen("/tree"));
  return snprintf(path, PATH_MAX, "%.*s/buffers/%u", root, shell->tree, id) < PATH_MAX;
}

static int openBuffer(uint32_t id, int flags) {
  char path[PATH_MAX];
  if (!bufferPath(id, path)) return -1;
  return (int)syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC, 0600);
}

static uint64_t heldAt(int fd) {
  const long at = syscall(SYS_lseek, fd, 0L, SEEK_CUR);
  return at < 0 ? 0 : (uint64_t)at;
}

static uint64_t held(SimCall* call) {
  return heldAt(((NodeCall*)call)->fd);
}

static void hold(SimCall* call, uint64_t number) {
  syscall(SYS_lseek, ((NodeCall*)call)->fd, (long)number, SEEK_SET);
}

static int make(SimCall* call, uint32_t id, size_t size) {
  (void)call;
  const int fd = openBuffer(id, O_RDWR | O_CREAT | O_TRUNC);
  if (fd < 0) return -1;
  const int failed = ftruncate(fd, (off_t)size);
  shellClose(fd);
  return failed;
}

static int fill(SimCall* call, uint32_t id, const void* from, size_t size) {
  (void)call;
  const int fd = openBuffer(id, O_RDWR);
  if (fd < 0) return -1;
  const int failed = pwrite(fd, from, size, 0) != (ssize_t)size;
  shellClose(fd);
  return failed;
}

static void drop(SimCall* call, uint32_t id) {
  char path[PATH_MAX];
  (void)call;
  if (bufferPath(id, path)) syscall(SYS_unlinkat, AT_FDCWD, path, 0);
}

const SimBuffers buffersOfNodes = {held, hold, make, fill, drop};

// ---- mappings that are there, to be told of when they go

enum { kMappings = 64 };

static struct {
  void* at;
  uint32_t node;
} mappings[kMappings];
static uint32_t mappingCount;

static void remember(void* at, uint32_t node) {
  shellLock();
  for (uint32_t i = 0; i < kMappings; ++i) {
    if (mappings[i].at) continue;
    mappings[i].at = at;
    mappings[i].node = node;
    __atomic_add_fetch(&mappingCount, 1, __ATOMIC_RELEASE);
    break;
  }
  shellUnlock();
}

// The node that was mapped there, or -1.
static int forget(const void* at) {
  int node = -1;
  shellLock();
  for (uint32_t i = 0; i < kMappings && node < 0; ++i) {
    if (mappings[i].at != at) continue;
    mappings[i].at = NULL;
    node = (int)mappings[i].node;
    __atomic_sub_fetch(&mappingCount, 1, __ATOMIC_RELEASE);
  }
  shellUnlock();
  return node;
}

static void traceMapping(const char* operation, const char* path, int error) {
  char spare[16];
  shellTrace(shellGet(), operation, path, error ? errnoName(error, spare) : "ok");
}

static void pathOf(uint32_t node, char path[SIM_NODE_NAME + 8]) {
  char name[SIM_NODE_NAME];
  simNodeName(SIM_AT(shellGet()->image, const SimNode, nodes) + node, name);
  snprintf(path, SIM_NODE_NAME + 8, "/dev/%s", name);
}

typedef void* (*Map)(void*, size_t, int, int, int, off_t);

static void* mapBuffer(void* at, size_t size, int access, int flags, int fd, off_t from) {
  const int buffer = from ? -1 : openBuffer(simBufferOf(heldAt(fd)), O_RDWR);
  struct stat status;
  void* result = MAP_FAILED;
  int error = EINVAL;
  if (buffer >= 0 && fstat(buffer, &status) == 0 && size <= (size_t)status.st_size) {
    result = REAL(Map, "mmap")(at, size, access, flags, buffer, 0);
    error = errno;
  }
  if (buffer >= 0) shellClose(buffer);
  errno = error;
  return result;
}

static void* mapNode(void* at, size_t size, int access, int flags, int fd, off_t from, uint32_t node) {
  char path[SIM_NODE_NAME + 8];
  SimFileFault fault = {.cut = -1};
  const int saved = errno;
  pathOf(node, path);
  simFileFaults(shellGet()->image, path, SIM_AIM_MAP, &fault);
  if (fault.isKilled) {
    shellTrace(shellGet(), "mmap", path, "killed");
    shellKill();
  }
  if (fault.hangMs) shellSleepMs(fault.hangMs);
  errno = fault.error;
  void* const result = fault.error ? MAP_FAILED : mapBuffer(at, size, access, flags, fd, from);
  const int error = result == MAP_FAILED ? errno : 0;
  if (!error) remember(result, node);
  traceMapping("mmap", path, error);
  errno = error ? error : saved;
  return result;
}

static void* mapAny(void* at, size_t size, int access, int flags, int fd, off_t from) {
  if (fd >= 0 && !(flags & MAP_ANONYMOUS)) {
    const int saved = errno;
    const Shell* const shell = shellGet();
    const int node = nodesFind(shell, fd);
    errno = saved;
    const int isMisc = node >= 0 && SIM_AT(shell->image, const SimNode, nodes)[node].kind < SIM_NODE_RENDER;
    if (isMisc) return mapNode(at, size, access, flags, fd, from, (uint32_t)node);
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
  const int node = __atomic_load_n(&mappingCount, __ATOMIC_ACQUIRE) ? forget(at) : -1;
  const int failed = REAL(Unmap, "munmap")(at, size);
  if (node >= 0) {
    char path[SIM_NODE_NAME + 8];
    const int saved = errno;
    pathOf((uint32_t)node, path);
    traceMapping("munmap", path, failed ? saved : 0);
    errno = saved;
  }
  return failed;
}
