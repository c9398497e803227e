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

uint64_t bufferHeldAt(int fd) {
  const long at = syscall(SYS_lseek, fd, 0L, SEEK_CUR);
  return at < 0 ? 0 : (uint64_t)at;
}

static uint64_t held(SimCall* call) {
  return bufferHeldAt(((NodeCall*)call)->fd);
}

static void hold(SimCall* call, uint64_t number) {
  syscall(SYS_lseek, ((NodeCall*)call)->fd, (long)number, SEEK_SET);
}

int bufferMake(SimCall* call, uint32_t id, size_t size) {
  (void)call;
  const int fd = openBuffer(id, O_RDWR | O_CREAT | O_TRUNC);
  if (fd < 0) return -1;
  const int failed = ftruncate(fd, (off_t)size);
  shellClose(fd);
  return failed;
}

int bufferFill(SimCall* call, uint32_t id, const void* from, size_t size) {
  (void)call;
  const int fd = openBuffer(id, O_RDWR);
  if (fd < 0) return -1;
  const int failed = pwrite(fd, from, size, 0) != (ssize_t)size;
  shellClose(fd);
  return failed;
}

void bufferDrop(SimCall* call, uint32_t id) {
  char path[PATH_MAX];
  (void)call;
  if (bufferPath(id, path)) syscall(SYS_unlinkat, AT_FDCWD, path, 0);
}

const SimBuffers buffersOfNodes = {held, hold, bufferMake, bufferFill, bufferDrop};

// ---- mappings that are there, to be told of when they go

enum { kMappings = 64 };

static struct {
  uint64_t at;
  uint32_t node;
  int process;
} mappings[kMappings];
static uint32_t mappingCount;

void mappingRemember(int process, uint64_t at, uint32_t node) {
  shellLock();
  for (uint32_t i = 0; i < kMappings; ++i) {
    if (mappings[i].at) continue;
    mappings[i].at = at;
    mappings[i].node = node;
    mappings[i].process = process;
    __atomic_add_fetch(&mappingCount, 1, __ATOMIC_RELEASE);
    break;
  }
  shellUnlock();
}

int mappingForget(int process, uint64_t at) {
  int node = -1;
  if (!__atomic_load_n(&mappingCount, __ATOMIC_ACQUIRE)) return node;
  shellLock();
  for (uint32_t i = 0; i < kMappings && node < 0; ++i) {
    if (mappings[i].at != at || mappings[i].process != process) continue;
    mappings[i].at = 0;
    node = (int)mappings[i].node;
    __atomic_sub_fetch(&mappingCount, 1, __ATOMIC_RELEASE);
  }
  shellUnlock();
  return node;
}

void mappingTrace(const char* operation, uint32_t node, int error) {
  char spare[16];
  char path[SIM_NODE_PATH];
  nodesPath(shellGet(), node, path);
  shellTrace(shellGet(), operation, path, error ? errnoName(error, spare) : "ok");
}

int mappingBegin(uint32_t node) {
  char path[SIM_NODE_PATH];
  SimFileFault fault = {.cut = -1};
  nodesPath(shellGet(), node, path);
  simFileFaults(shellGet()->image, path, SIM_AIM_MAP, &fault);
  if (fault.isKilled) {
    shellTrace(shellGet(), "mmap", path, "killed");
    shellKill(0);
  }
  if (fault.hangMs) shellSleepMs(fault.hangMs);
  return fault.error;
}

int mappingBuffer(uint64_t held, size_t size, int64_t from) {
  const int buffer = from ? -1 : openBuffer(simBufferOf(held), O_RDWR);
  struct stat status;
  if (buffer >= 0 && fstat(buffer, &status) == 0 && size <= (size_t)status.st_size) return buffer;
  if (buffer >= 0) shellClose(buffer);
  errno = EINVAL;
  return -1;
}
