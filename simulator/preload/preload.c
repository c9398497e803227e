#include "preload.h"

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

static Shell theShell;
static pthread_once_t once = PTHREAD_ONCE_INIT;

_Noreturn void shellGiveUp(const char* what, const char* which) {
  char text[PATH_MAX + 128];
  const int length =
      snprintf(text, sizeof text, "libovgpu_sim.so: %s%s%s; start the program with ovgpu-sim\n", what,
               which[0] ? ": " : "", which);
  if (length > 0 && syscall(SYS_write, 2, text, (size_t)length) < 0) _exit(2);
  _exit(2);
}

static void start(void) {
  const char* const root = getenv("OVGPU_SIM_ROOT");
  if (!root || root[0] != '/') shellGiveUp("OVGPU_SIM_ROOT is not set", "");
  shellOpen(&theShell, root, getenv("OVGPU_SIM_TRACE"));
  pthread_atfork(shellBeforeFork, shellAfterFork, shellInChild);
}

const Shell* shellGet(void) {
  pthread_once(&once, start);
  return &theShell;
}

_Noreturn void shellKill(int isLocked) {
  (void)isLocked;  // the kernel takes the lock off
  syscall(SYS_kill, (long)getpid(), (long)SIGKILL);
  for (;;) pause();
}

void shellSleepMs(uint64_t ms) {
  struct timespec left = {.tv_sec = (time_t)(ms / 1000), .tv_nsec = (long)(ms % 1000) * 1000000};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void shellCallerPath(const char* name, char path[64]) {
  snprintf(path, 64, "/proc/self/%s", name);
}

void* preloadNext(void** cache, const char* name) {
  void* next = __atomic_load_n(cache, __ATOMIC_ACQUIRE);
  if (next) return next;
  next = dlsym(RTLD_NEXT, name);
  if (!next) shellGiveUp("the C library has no function", name);
  __atomic_store_n(cache, next, __ATOMIC_RELEASE);
  return next;
}
