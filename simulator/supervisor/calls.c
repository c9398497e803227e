// System calls on descriptors and on the process itself.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include "asked.h"

static void fdPath(const Asked* asked, int fd, char path[64]) {
  snprintf(path, 64, "/proc/%d/fd/%d", askedThread(asked), fd);
}

static int fdAt(const Asked* asked, int at) {
  return (int)askedArgument(asked, at);
}

// The node behind the caller's descriptor, or -1.
static int nodeAt(const Asked* asked, int at) {
  char path[64];
  if (fdAt(asked, at) < 0) return -1;
  fdPath(asked, fdAt(asked, at), path);
  return nodesFindAt(shellGet(), AT_FDCWD, path, 0);
}

// ---- nodes

typedef struct CallerCall {
  NodeCall own;  // the first member, so that one stands for the other
  Asked* asked;
} CallerCall;

static Asked* askerOf(SimCall* call) {
  return ((CallerCall*)call)->asked;
}

static int readCaller(SimCall* call, void* to, uint64_t address, size_t size) {
  return memoryRead(askerOf(call), to, address, size);
}

static int writeCaller(SimCall* call, uint64_t address, const void* from, size_t size) {
  return memoryWrite(askerOf(call), address, from, size);
}

static uint64_t heldByCaller(SimCall* call) {
  const int fd = takeFd(askerOf(call), ((NodeCall*)call)->fd);
  if (fd < 0) return 0;
  const uint64_t held = bufferHeldAt(fd);
  close(fd);
  return held;
}

static void holdForCaller(SimCall* call, uint64_t number) {
  const int fd = takeFd(askerOf(call), ((NodeCall*)call)->fd);
  if (fd < 0) return;
  lseek(fd, (off_t)number, SEEK_SET);
  close(fd);
}

static const SimBuffers buffersOfCaller = {heldByCaller, holdForCaller, bufferMake, bufferFill, bufferDrop};

static void answerIoctl(Asked* asked) {
  const int node = nodeAt(asked, 0);
  CallerCall given;
  if (node < 0) {
    answerByKernel(asked);
    return;
  }
  if (!askedIsValid(asked)) return;
  given.asked = asked;
  given.own.fd = fdAt(asked, 0);
  given.own.call.readMemory = readCaller;
  given.own.call.writeMemory = writeCaller;
  given.own.call.buffers = &buffersOfCaller;
  given.own.call.node = (uint32_t)node;
  given.own.call.request = (uint32_t)askedArgument(asked, 1);
  given.own.call.argument = askedArgument(asked, 2);
  answerWith(asked, 0, callAnswer(shellGet(), &given.own));
}

static void answerClose(Asked* asked) {
  const int node = nodeAt(asked, 0);
  if (node >= 0) nodesTraceClose(shellGet(), (uint32_t)node, 0);
  answerByKernel(asked);
}

// ---- shared memory

static int64_t mapBuffer(Asked* asked) {
  const int fd = takeFd(asked, fdAt(asked, 4));
  if (fd < 0) return -EBADF;
  const uint64_t held = bufferHeldAt(fd);
  close(fd);
  const int buffer = mappingBuffer(held, askedArgument(asked, 1), (int64_t)askedArgument(asked, 5));
  if (buffer < 0) return -errno;
  uint64_t arguments[6];
  memcpy(arguments, asked->notif.data.args, sizeof arguments);
  // The same thing by another name, which the filter lets pass.
  arguments[3] = (arguments[3] & ~(uint64_t)MAP_TYPE) | MAP_SHARED_VALIDATE;
  return answerByStandIn(asked, buffer, 4, SYS_mmap, arguments);
}

static void answerMap(Asked* asked) {
  const int node = nodeAt(asked, 4);
  if (!nodesHaveBuffers(shellGet(), node)) {
    answerByKernel(asked);
    return;
  }
  const int process = askedProcess(asked);
  const int error = mappingBegin((uint32_t)node);
  const int64_t result = error ? -error : mapBuffer(asked);
  const int failed = result < 0 && result > -4096;
  if (!failed && watching()->traces) mappingRemember(process, (uint64_t)result, (uint32_t)node);
  mappingTrace("mmap", (uint32_t)node, failed ? (int)-result : 0);
  if (!asked->isAnswered) answerWith(asked, 0, (int)-result);
}

static void answerUnmap(Asked* asked) {
  const int node = mappingForget(askedProcess(asked), askedArgument(asked, 0));
  if (node >= 0) mappingTrace("munmap", (uint32_t)node, 0);
  answerByKernel(asked);
}

// ---- event queues

static void answerRead(Asked* asked) {
  char message[SHELL_MESSAGE_SIZE];
  char path[64];
  fdPath(asked, fdAt(asked, 0), path);
  if (!queueIs(shellGet(), path)) {
    answerByKernel(asked);
    return;
  }
  const int fd = takeFd(asked, fdAt(asked, 0));
  if (fd < 0) {
    answerWith(asked, 0, EBADF);
    return;
  }
  const ssize_t got = queueRead(fd, message, askedArgument(asked, 2));
  int error = got < 0 ? errno : 0;
  close(fd);
  if (got > 0 && memoryWrite(asked, askedArgument(asked, 1), message, (size_t)got) != 0) error = EFAULT;
  answerWith(asked, got, error);
}

// ---- the process

static void answerFolder(Asked* asked) {
  char path[PATH_MAX];
  char link[64];
  snprintf(link, sizeof link, "/proc/%d/cwd", askedThread(asked));
  const ssize_t length = readlink(link, path, sizeof path - 1);
  path[length < 0 ? 0 : length] = '\0';
  const char* const shown = accessHidePrefix(shellGet(), path);
  const size_t size = strlen(shown) + 1;
  if (length <= 0 || size == (size_t)length + 1) {
    answerByKernel(asked);
    return;
  }
  if (size > askedArgument(asked, 1)) {
    answerWith(asked, 0, ERANGE);
    return;
  }
  const int failed = memoryWrite(asked, askedArgument(asked, 0), shown, size);
  answerWith(asked, (int64_t)size, failed ? EFAULT : 0);
}

static void answerUser(Asked* asked) {
  answerWith(asked, watching()->user, 0);
}

// ---- the wall clock

static void answerClock(Asked* asked) {
  const struct timespec now = {.tv_sec = shellGet()->image->time};
  answerWith(asked, 0, memoryWrite(asked, askedArgument(asked, 1), &now, sizeof now) ? EFAULT : 0);
}

static void answerTimeOfDay(Asked* asked) {
  const struct timeval now = {.tv_sec = shellGet()->image->time};
  const uint64_t to = askedArgument(asked, 0);
  answerWith(asked, 0, to && memoryWrite(asked, to, &now, sizeof now) ? EFAULT : 0);
}

static void answerTime(Asked* asked) {
  const time_t now = shellGet()->image->time;
  const uint64_t to = askedArgument(asked, 0);
  answerWith(asked, now, to && memoryWrite(asked, to, &now, sizeof now) ? EFAULT : 0);
}

static const struct {
  long number;
  void (*answer)(Asked* asked);
} answers[] = {
    {SYS_ioctl, answerIoctl},
    {SYS_clock_gettime, answerClock},
    {SYS_close, answerClose},
    {SYS_read, answerRead},
    {SYS_mmap, answerMap},
    {SYS_munmap, answerUnmap},
    {SYS_getcwd, answerFolder},
    {SYS_geteuid, answerUser},
    {SYS_gettimeofday, answerTimeOfDay},
    {SYS_time, answerTime},
    {SYS_execve, answerExec},
    {SYS_execveat, answerExec},
};

void answerOther(Asked* asked) {
  for (size_t i = 0; i < sizeof answers / sizeof answers[0]; ++i) {
    if (answers[i].number == asked->notif.data.nr) answers[i].answer(asked);
  }
}
