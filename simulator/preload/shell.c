#include "shell.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

static Shell theShell;
static pthread_once_t once = PTHREAD_ONCE_INIT;
static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
static int lockFd = -1;
static char imagePath[PATH_MAX];

// Descriptors of ours start here, out of the way of programs that count on the low ones.
enum { kFirstFd = 900 };

static _Noreturn void giveUp(const char* what, const char* which) {
  char text[PATH_MAX + 128];
  const int length =
      snprintf(text, sizeof text, "libovgpu_sim.so: %s%s%s; start the program with ovgpu-sim\n", what,
               which[0] ? ": " : "", which);
  if (length > 0 && syscall(SYS_write, 2, text, (size_t)length) < 0) _exit(2);
  _exit(2);
}

// The library's own files are opened without going through what it interposes.
static int openOwn(const char* path, int flags) {
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC, 0644);
  if (fd < 0) return fd;
  const int high = fcntl(fd, F_DUPFD_CLOEXEC, kFirstFd);
  if (high < 0) return fd;
  shellClose(fd);
  return high;
}

static void mapImage(void) {
  lockFd = openOwn(imagePath, O_RDWR);
  if (lockFd < 0) giveUp("no image of a host", imagePath);
  struct stat status;
  if (fstat(lockFd, &status) != 0 || status.st_size < (off_t)sizeof(SimImage)) {
    giveUp("not an image of a host", imagePath);
  }
  // Not by the name mmap, which is interposed and would come here again.
  void* const memory =
      (void*)syscall(SYS_mmap, NULL, (size_t)status.st_size, PROT_READ | PROT_WRITE, MAP_SHARED, lockFd, 0L);
  if (memory == MAP_FAILED) giveUp("cannot map the image of a host", imagePath);
  theShell.image = memory;
  if (theShell.image->magic != SIM_IMAGE_MAGIC || theShell.image->layout != SIM_IMAGE_LAYOUT ||
      theShell.image->size != (uint64_t)status.st_size) {
    giveUp("not an image of a host, or of another version", imagePath);
  }
}

static void beforeFork(void) {
  pthread_mutex_lock(&mutex);
}
static void afterFork(void) {
  pthread_mutex_unlock(&mutex);
}

// A file lock belongs to the open file, which parent and child would share.
static void inChild(void) {
  shellClose(lockFd);
  lockFd = openOwn(imagePath, O_RDWR);
  pthread_mutex_unlock(&mutex);
}

static void start(void) {
  const char* const root = getenv("OVGPU_SIM_ROOT");
  if (!root || root[0] != '/') giveUp("OVGPU_SIM_ROOT is not set", "");
  const int length = snprintf(theShell.tree, sizeof theShell.tree, "%s/tree", root);
  if (length < 0 || (size_t)length >= sizeof theShell.tree) giveUp("OVGPU_SIM_ROOT is too long", "");
  theShell.treeLength = (size_t)length;
  if ((size_t)snprintf(imagePath, sizeof imagePath, "%s/image", root) >= sizeof imagePath) {
    giveUp("OVGPU_SIM_ROOT is too long", "");
  }
  mapImage();
  theShell.traceFd = -1;
  const char* const trace = getenv("OVGPU_SIM_TRACE");
  if (trace && trace[0]) {
    theShell.traceFd = openOwn(trace, O_WRONLY | O_APPEND | O_CREAT);
    if (theShell.traceFd < 0) giveUp("cannot write the trace", trace);
  }
  pthread_atfork(beforeFork, afterFork, inChild);
}

const Shell* shellGet(void) {
  pthread_once(&once, start);
  return &theShell;
}

void shellLock(void) {
  pthread_mutex_lock(&mutex);
  // A program that closes every descriptor it finds has closed this one too.
  if (flock(lockFd, LOCK_EX) != 0 && errno == EBADF) {
    lockFd = openOwn(imagePath, O_RDWR);
    flock(lockFd, LOCK_EX);
  }
  if (!theShell.image->unsettled) return;
  simSettle(theShell.image);
  nodesArrange(&theShell);
}

void shellUnlock(void) {
  flock(lockFd, LOCK_UN);
  pthread_mutex_unlock(&mutex);
}

void shellClose(int fd) {
  syscall(SYS_close, fd);
}

_Noreturn void shellKill(void) {
  syscall(SYS_kill, (long)getpid(), (long)SIGKILL);
  for (;;) pause();
}

void shellSettle(const Shell* shell) {
  if (!__atomic_load_n(&shell->image->unsettled, __ATOMIC_ACQUIRE)) return;
  shellLock();
  shellUnlock();
}

void shellSleepMs(uint64_t ms) {
  struct timespec left = {.tv_sec = (time_t)(ms / 1000), .tv_nsec = (long)(ms % 1000) * 1000000};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void shellTrace(const Shell* shell, const char* operation, const char* subject, const char* result) {
  if (shell->traceFd < 0) return;
  char line[PATH_MAX + 128];
  const int length = snprintf(line, sizeof line, "%s %s %s\n", operation, subject, result);
  // One write, so that lines of threads and processes never mix.
  if (length > 0 && write(shell->traceFd, line, (size_t)length) < 0) return;
}

void* shellNext(void** cache, const char* name) {
  void* next = __atomic_load_n(cache, __ATOMIC_ACQUIRE);
  if (next) return next;
  next = dlsym(RTLD_NEXT, name);
  if (!next) giveUp("the C library has no function", name);
  __atomic_store_n(cache, next, __ATOMIC_RELEASE);
  return next;
}

const char* errnoName(int error, char spare[16]) {
  const char* const name = strerrorname_np(error);
  if (name) return name;
  snprintf(spare, 16, "%d", error);
  return spare;
}
