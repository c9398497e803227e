#include "supervisor.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include "asked.h"

// Not in every kernel's headers yet.
enum { kWakesInTurn = 1 };
#define SET_LISTENER_FLAGS SECCOMP_IOW(4, uint64_t)

static Shell theShell;
static Watching watched;
static int listener = -1;
static _Thread_local Asked* current;
static _Thread_local int isListening;

// ---- what the shell wants to know

const Shell* shellGet(void) {
  return &theShell;
}

_Noreturn void shellGiveUp(const char* what, const char* which) {
  fprintf(stderr, "ovgpu-sim: %s%s%s\n", what, which[0] ? ": " : "", which);
  _exit(2);
}

_Noreturn void shellKill(int isLocked) {
  kill(askedThread(current), SIGKILL);
  if (isLocked) shellUnlock();
  longjmp(current->whenKilled, 1);
}

void shellSleepMs(uint64_t ms) {
  struct timespec left = {.tv_sec = (time_t)(ms / 1000), .tv_nsec = (long)(ms % 1000) * 1000000};
  stepAside();
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void shellCallerPath(const char* name, char path[64]) {
  snprintf(path, 64, "/proc/%d/%s", askedThread(current), name);
}

const Watching* watching(void) {
  return &watched;
}

// ---- the caller

int askedThread(const Asked* asked) {
  return (int)asked->notif.pid;
}

long statusField(const Asked* asked, const char* name, int base) {
  char path[64];
  char text[1024];
  snprintf(path, sizeof path, "/proc/%d/status", askedThread(asked));
  const int fd = open(path, O_RDONLY | O_CLOEXEC);
  const ssize_t length = fd < 0 ? -1 : read(fd, text, sizeof text - 1);
  if (fd >= 0) close(fd);
  if (length <= 0) return -1;
  text[length] = '\0';
  const char* const found = strstr(text, name);
  return found ? strtol(found + strlen(name), NULL, base) : -1;
}

int askedProcess(const Asked* asked) {
  return (int)statusField(asked, "\nTgid:", 10);
}

int askedIsValid(const Asked* asked) {
  return ioctl(listener, SECCOMP_IOCTL_NOTIF_ID_VALID, &asked->notif.id) == 0;
}

int memoryRead(const Asked* asked, void* to, uint64_t from, size_t size) {
  const struct iovec here = {to, size};
  const struct iovec there = {(void*)(uintptr_t)from, size};
  return process_vm_readv(askedThread(asked), &here, 1, &there, 1, 0) == (ssize_t)size ? 0 : -1;
}

int memoryWrite(const Asked* asked, uint64_t to, const void* from, size_t size) {
  const struct iovec here = {(void*)(uintptr_t)from, size};
  const struct iovec there = {(void*)(uintptr_t)to, size};
  return process_vm_writev(askedThread(asked), &here, 1, &there, 1, 0) == (ssize_t)size ? 0 : -1;
}

int memoryReadText(const Asked* asked, char to[PATH_MAX], uint64_t from) {
  enum { kPage = 4096 };
  // Memory behind the page in which the text ends may not be there.
  for (size_t have = 0; have < PATH_MAX;) {
    const size_t rest = kPage - (from + have) % kPage;
    const size_t part = rest < PATH_MAX - have ? rest : PATH_MAX - have;
    if (memoryRead(asked, to + have, from + have, part) != 0) return -1;
    if (memchr(to + have, '\0', part)) return 0;
    have += part;
  }
  return -1;
}

int takeFd(const Asked* asked, int fd) {
  const int process = (int)syscall(SYS_pidfd_open, askedProcess(asked), 0);
  if (process < 0) return -1;
  const int taken = (int)syscall(SYS_pidfd_getfd, process, fd, 0);
  close(process);
  return taken;
}

// ---- answers

void answerWith(Asked* asked, int64_t result, int error) {
  struct seccomp_notif_resp answer = {.id = asked->notif.id, .val = error ? 0 : result, .error = -error};
  asked->isAnswered = 1;
  ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

void answerByKernel(Asked* asked) {
  struct seccomp_notif_resp answer = {.id = asked->notif.id, .flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE};
  asked->isAnswered = 1;
  ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

static uint32_t firstFree(const Asked* asked, int from) {
  char path[64];
  struct stat status;
  for (;; ++from) {
    snprintf(path, sizeof path, "/proc/%d/fd/%d", askedThread(asked), from);
    if (lstat(path, &status) != 0) return (uint32_t)from;
  }
}

void answerWithFd(Asked* asked, int fd, int flags, int from) {
  struct seccomp_notif_addfd given = {.id = asked->notif.id,
                                      .flags = SECCOMP_ADDFD_FLAG_SEND,
                                      .srcfd = (uint32_t)fd,
                                      .newfd_flags = (uint32_t)flags & O_CLOEXEC};
  int result = -1;
  if (from) {
    given.flags |= SECCOMP_ADDFD_FLAG_SETFD;
    given.newfd = firstFree(asked, from);
    result = ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &given);
    given.flags &= ~(uint32_t)SECCOMP_ADDFD_FLAG_SETFD;
    given.newfd = 0;
  }
  if (result < 0) result = ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &given);
  const int error = errno;
  close(fd);
  if (result < 0) answerWith(asked, 0, error);
  asked->isAnswered = 1;
}

int giveFd(const Asked* asked, int fd) {
  struct seccomp_notif_addfd given = {.id = asked->notif.id, .srcfd = (uint32_t)fd, .newfd_flags = O_CLOEXEC};
  return ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &given);
}

// ---- threads

static void serveOne(Asked* asked) {
  current = asked;
  if (setjmp(asked->whenKilled)) return;
  if (!answerPaths(asked)) answerOther(asked);
  if (!asked->isAnswered) answerWith(asked, 0, ENOSYS);
}

static void* serve(void* nothing) {
  (void)nothing;
  isListening = 1;
  while (isListening) {
    Asked asked;
    memset(&asked, 0, offsetof(Asked, whenKilled));
    if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &asked.notif) == 0) {
      serveOne(&asked);
    } else if (errno != EINTR && errno != ENOENT) {
      break;  // nobody is left who could ask
    }
  }
  return NULL;
}

static void startListening(void) {
  pthread_t thread;
  const int error = pthread_create(&thread, NULL, serve, NULL);
  if (error) shellGiveUp("cannot start a thread", strerror(error));
  pthread_detach(thread);
}

void stepAside(void) {
  if (!isListening) return;
  isListening = 0;
  startListening();
}

// ---- from the runner

void supervisorOpen(const SupervisorSetting* setting) {
  shellOpen(&theShell, setting->root, setting->trace);
  watched.fixedTime = theShell.image->fixedTime != 0;
  watched.traces = theShell.traceFd >= 0;
  watched.tellsUser = setting->user != NULL;
  watched.user = setting->user ? (unsigned)strtoul(setting->user, NULL, 10) : 0;
}

int supervisorInstall(void) {
  return filterInstall(&watched);
}

const char* supervisorStart(int commandPidfd, int listenerThere) {
  listener = (int)syscall(SYS_pidfd_getfd, commandPidfd, listenerThere, 0);
  if (listener < 0) return "descriptors of the command cannot be reached";
  // There is no such call; a kernel that can answer with a descriptor says so and nothing else.
  struct seccomp_notif_addfd nobody = {.flags = SECCOMP_ADDFD_FLAG_SEND};
  if (ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &nobody) != 0 && errno != ENOENT) {
    return "the kernel cannot answer a call with a descriptor (5.14 is needed)";
  }
  // Half the time of a call; older kernels do without.
  ioctl(listener, SET_LISTENER_FLAGS, (uint64_t)kWakesInTurn);
  // What is made for a caller has the mode that the caller's own mask leaves.
  umask(0);
  startListening();
  return NULL;
}
