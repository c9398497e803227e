// One system call that waits for its answer, and how it is answered. For the sources of the supervisor.
//
// A call belongs to the thread that has received it. What the functions here tell of a caller that is gone
// meanwhile goes nowhere.
#ifndef ASKED_H
#define ASKED_H

#include <linux/seccomp.h>
#include <setjmp.h>

#include "shell.h"

typedef struct Asked {
  struct seccomp_notif notif;
  char later[192];  // what kernels to come may add
  int isAnswered;
  jmp_buf whenKilled;  // where to go on when a fault has killed the caller
} Asked;

// What the filter looks at beside paths and nodes.
typedef struct Watching {
  int fixedTime;
  int traces;
  int tellsUser;
  unsigned user;
} Watching;

// Event queues get descriptors from here on, so that the filter can tell reading them from all other reading.
enum { kFirstQueueFd = 700 };

// ---- the listener

// The numbers that callers have for a thread; the process it is of.
int askedThread(const Asked* asked);
int askedProcess(const Asked* asked);

static inline uint64_t askedArgument(const Asked* asked, int i) {
  return asked->notif.data.args[i];
}

// Whether the caller still waits for this answer.
int askedIsValid(const Asked* asked);

// Each answers the call. `error` 0: the call gives `result`.
void answerWith(Asked* asked, int64_t result, int error);
void answerByKernel(Asked* asked);

// Gives the caller a copy of `fd`, which is closed, from number `from` on if that is not 0.
void answerWithFd(Asked* asked, int fd, int flags, int from);

// A copy of `fd` for the caller without an answer; its number there, or -1.
int giveFd(const Asked* asked, int fd);

// A copy of the caller's descriptor, or -1.
int takeFd(const Asked* asked, int fd);

// Lets another thread listen, before this one waits for something.
void stepAside(void);

// The number of a field of the caller's status file, in that base.
long statusField(const Asked* asked, const char* name, int base);

// ---- the caller's memory; 0, or -1 when it cannot be reached

int memoryRead(const Asked* asked, void* to, uint64_t from, size_t size);
int memoryWrite(const Asked* asked, uint64_t to, const void* from, size_t size);

// A text that ends within PATH_MAX.
int memoryReadText(const Asked* asked, char to[PATH_MAX], uint64_t from);

// ---- answers

const Watching* watching(void);

// Answers a call on paths if it is one.
int answerPaths(Asked* asked);

// Answers every other call that the filter stops.
void answerOther(Asked* asked);

// ---- calls that the caller has to make itself

// The caller makes the call `number` in place of the one that waits, with a copy of `fd`, which is closed, in
// the argument at `fdAt`. Answers the call. Returns what the kernel returned, an errno negated.
int64_t answerByStandIn(Asked* asked, int fd, int fdAt, long number, const uint64_t arguments[6]);

// Lets an exec happen and takes the clock away that the kernel maps into every program, so that the new
// program asks the kernel.
void answerExec(Asked* asked);

// ---- the filter

// As supervisorInstall.
int filterInstall(const Watching* watching);

#endif
