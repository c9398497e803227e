// What a program can only do itself: changing its folder, mapping memory, becoming another program. The
// caller is traced for as long as it takes.
#include <elf.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include "asked.h"

enum { kSyscallSize = 2, kGone = -1 };

typedef struct user_regs_struct Registers;

static int isPtraceError(long result) {
  return result != 0;
}

// The next stop of a thread that this one holds; 0, or kGone when it has ended. Its end is left for its
// parent to hear of.
static int waitForStop(siginfo_t* news) {
  while (waitid(P_ALL, 0, news, WEXITED | WSTOPPED | WNOWAIT | __WALL | __WNOTHREAD) != 0) {
    if (errno != EINTR) return kGone;
  }
  return news->si_code == CLD_TRAPPED || news->si_code == CLD_STOPPED ? 0 : kGone;
}

// ---- calls by the caller

// Runs one call in a thread that stands behind a call of its own. kGone when the thread is.
static int runThere(pid_t thread, const Registers* before, long number, const uint64_t a[6],
                    int64_t* result) {
  siginfo_t news;
  Registers registers = *before;
  registers.rip -= kSyscallSize;
  registers.rax = (uint64_t)number;
  registers.orig_rax = ~0ull;
  registers.rdi = a[0];
  registers.rsi = a[1];
  registers.rdx = a[2];
  registers.r10 = a[3];
  registers.r8 = a[4];
  registers.r9 = a[5];
  if (isPtraceError(ptrace(PTRACE_SETREGS, thread, 0, &registers))) return kGone;
  for (int i = 0; i < 2; ++i) {  // into the call and out of it
    if (isPtraceError(ptrace(PTRACE_SYSCALL, thread, 0, 0)) || waitForStop(&news) == kGone) return kGone;
  }
  if (isPtraceError(ptrace(PTRACE_GETREGS, thread, 0, &registers))) return kGone;
  *result = (int64_t)registers.rax;
  return 0;
}

static int64_t standIn(pid_t thread, int fdThere, long number, const uint64_t arguments[6]) {
  const uint64_t rubbish[6] = {(uint64_t)fdThere, (uint64_t)fdThere};
  const uint64_t all = ~0ull;
  const size_t maskSize = sizeof all;
  uint64_t mask = 0;
  Registers before;
  int64_t result = -ESRCH;
  int64_t ignored = 0;
  if (isPtraceError(ptrace(PTRACE_GETREGS, thread, 0, &before)) ||
      isPtraceError(ptrace(PTRACE_GETSIGMASK, thread, maskSize, &mask)) ||
      isPtraceError(ptrace(PTRACE_SETSIGMASK, thread, maskSize, &all))) {
    return result;
  }
  if (runThere(thread, &before, number, arguments, &result) == kGone) return -ESRCH;
  // Not by the name close, which may be watched.
  if (runThere(thread, &before, SYS_close_range, rubbish, &ignored) == kGone) return -ESRCH;
  before.rax = (uint64_t)result;
  before.orig_rax = ~0ull;
  ptrace(PTRACE_SETREGS, thread, 0, &before);
  ptrace(PTRACE_SETSIGMASK, thread, maskSize, &mask);
  return result;
}

int64_t answerByStandIn(Asked* asked, int fd, int fdAt, long number, const uint64_t arguments[6]) {
  const pid_t thread = askedThread(asked);
  siginfo_t news;
  uint64_t given[6];
  memcpy(given, arguments, sizeof given);
  // A program that a debugger holds cannot be held twice.
  if (isPtraceError(ptrace(PTRACE_SEIZE, thread, 0, PTRACE_O_TRACESYSGOOD))) {
    const int error = errno;
    close(fd);
    return -error;
  }
  const int there = giveFd(asked, fd);
  int64_t result = -errno;
  close(fd);
  given[fdAt] = (uint64_t)there;
  // It stops as soon as it is back from its call, whose answer is put right then.
  ptrace(PTRACE_INTERRUPT, thread, 0, 0);
  answerWith(asked, 0, there < 0 ? (int)-result : 0);
  if (waitForStop(&news) != kGone) {
    if (there >= 0) result = standIn(thread, there, number, given);
    ptrace(PTRACE_DETACH, thread, 0, 0);
  }
  return result;
}

// ---- a new program

static int readThere(pid_t thread, uint64_t from, uint64_t* word) {
  errno = 0;
  *word = (uint64_t)ptrace(PTRACE_PEEKDATA, thread, from, 0);
  return errno == 0;
}

// Makes the entry that leads to the kernel's own clock one that means nothing. It lies on the new stack,
// behind arguments and environment, each of which ends in a null.
static void hideClock(pid_t thread) {
  Registers registers;
  uint64_t word = 0;
  if (isPtraceError(ptrace(PTRACE_GETREGS, thread, 0, &registers))) return;
  uint64_t at = registers.rsp + sizeof word;
  for (int list = 0; list < 2; ++list) {
    do {
      if (!readThere(thread, at, &word)) return;
      at += sizeof word;
    } while (word);
  }
  for (; readThere(thread, at, &word) && word != AT_NULL; at += 2 * sizeof word) {
    if (word == AT_SYSINFO_EHDR) ptrace(PTRACE_POKEDATA, thread, at, AT_IGNORE);
  }
}

// Whether there is something to execute; a shell tries one folder after the other.
static int canBecome(const Asked* asked) {
  char path[PATH_MAX];
  char whole[PATH_MAX + 32];
  const int isAt = asked->notif.data.nr == SYS_execveat;
  if (isAt) return 1;
  if (memoryReadText(asked, path, askedArgument(asked, 0)) != 0) return 0;
  if (path[0] == '/') return access(path, X_OK) == 0;
  snprintf(whole, sizeof whole, "/proc/%d/cwd/%s", askedThread(asked), path);
  return access(whole, X_OK) == 0;
}

void answerExec(Asked* asked) {
  const pid_t thread = askedThread(asked);
  if (!canBecome(asked)) {
    answerByKernel(asked);
    return;
  }
  if (isPtraceError(ptrace(PTRACE_SEIZE, thread, 0, PTRACE_O_TRACEEXEC))) {
    fprintf(stderr, "ovgpu-sim: the clock of the host cannot be shown: %s\n", strerror(errno));
    answerByKernel(asked);
    return;
  }
  answerByKernel(asked);
  stepAside();
  // The process may be known by the number of another of its threads then.
  siginfo_t news;
  if (waitForStop(&news) == kGone) return;
  const int isExec = news.si_status == (SIGTRAP | PTRACE_EVENT_EXEC << 8);
  if (isExec) hideClock(news.si_pid);
  // Held for nothing: it could not become the program, and a signal has come meanwhile.
  const int isSignal = news.si_status < 256;
  ptrace(PTRACE_DETACH, news.si_pid, 0, isSignal ? news.si_status : 0);
}
