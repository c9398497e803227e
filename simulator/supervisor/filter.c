// Which system calls the kernel is to stop. All others run at full speed.
#include <errno.h>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <stddef.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "asked.h"

#ifndef SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV
#define SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV (1UL << 5)
#endif

enum { kX32Bit = 0x40000000, kMaxLength = 256 };

typedef struct Program {
  struct sock_filter steps[kMaxLength];
  unsigned short length;
} Program;

static void add(Program* program, unsigned short code, uint32_t number, uint8_t whenTrue, uint8_t whenFalse) {
  program->steps[program->length++] = (struct sock_filter){code, whenTrue, whenFalse, number};
}

static void load(Program* program, size_t offset) {
  add(program, BPF_LD | BPF_W | BPF_ABS, (uint32_t)offset, 0, 0);
}

static void end(Program* program, uint32_t verdict) {
  add(program, BPF_RET | BPF_K, verdict, 0, 0);
}

static void always(Program* program, int number, uint32_t verdict) {
  add(program, BPF_JMP | BPF_JEQ | BPF_K, (uint32_t)number, 0, 1);
  end(program, verdict);
}

// Stops the call if its argument, with the mask, is one of the two; or, if `compare` says so, not below the
// first.
static void when(Program* program, int number, int argument, uint32_t mask, unsigned short compare,
                 uint32_t one, uint32_t other) {
  add(program, BPF_JMP | BPF_JEQ | BPF_K, (uint32_t)number, 0, 6);
  load(program, offsetof(struct seccomp_data, args) + 8 * (size_t)argument);
  add(program, BPF_ALU | BPF_AND | BPF_K, mask, 0, 0);
  add(program, BPF_JMP | compare | BPF_K, one, 1, 0);
  add(program, BPF_JMP | BPF_JEQ | BPF_K, other, 0, 1);
  end(program, SECCOMP_RET_USER_NOTIF);
  end(program, SECCOMP_RET_ALLOW);
}

// A file that is told by its descriptor alone is the right one already.
static void unlessByDescriptor(Program* program, int number, int flagsAt) {
  when(program, number, flagsAt, AT_EMPTY_PATH, BPF_JEQ, 0, 0);
}

static void compose(Program* program, const Watching* watching) {
  static const int kStopped[] = {
      SYS_open,      SYS_openat,     SYS_stat,   SYS_lstat,    SYS_access,    SYS_faccessat, SYS_faccessat2,
      SYS_readlink,  SYS_readlinkat, SYS_statfs, SYS_getxattr, SYS_lgetxattr, SYS_listxattr, SYS_llistxattr,
      SYS_unlink,    SYS_unlinkat,   SYS_rmdir,  SYS_mkdir,    SYS_mkdirat,   SYS_rename,    SYS_renameat,
      SYS_renameat2, SYS_chdir,      SYS_getcwd, SYS_creat,
  };
  // Ways around the others. Programs that try them fall back when they are not there.
  static const int kAbsent[] = {SYS_openat2, SYS_io_uring_setup};
  load(program, offsetof(struct seccomp_data, arch));
  add(program, BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0);
  end(program, SECCOMP_RET_KILL_PROCESS);
  load(program, offsetof(struct seccomp_data, nr));
  add(program, BPF_JMP | BPF_JGE | BPF_K, kX32Bit, 0, 1);
  end(program, SECCOMP_RET_ERRNO | ENOSYS);
  when(program, SYS_read, 0, ~0u, BPF_JGE, kFirstQueueFd, kFirstQueueFd);
  when(program, SYS_ioctl, 1, 0xff00, BPF_JEQ, 'M' << 8, 'd' << 8);
  when(program, SYS_mmap, 3, MAP_TYPE | MAP_ANONYMOUS, BPF_JEQ, MAP_SHARED, MAP_SHARED);
  unlessByDescriptor(program, SYS_newfstatat, 3);
  unlessByDescriptor(program, SYS_statx, 2);
  for (size_t i = 0; i < sizeof kStopped / sizeof kStopped[0]; ++i) {
    always(program, kStopped[i], SECCOMP_RET_USER_NOTIF);
  }
  for (size_t i = 0; i < sizeof kAbsent / sizeof kAbsent[0]; ++i) {
    always(program, kAbsent[i], SECCOMP_RET_ERRNO | ENOSYS);
  }
  if (watching->fixedTime) {
    when(program, SYS_clock_gettime, 0, ~0u, BPF_JEQ, CLOCK_REALTIME, CLOCK_REALTIME_COARSE);
    for (int i = 0; i < 4; ++i) {
      static const int kTimed[] = {SYS_gettimeofday, SYS_time, SYS_execve, SYS_execveat};
      always(program, kTimed[i], SECCOMP_RET_USER_NOTIF);
    }
  }
  if (watching->traces) {
    always(program, SYS_close, SECCOMP_RET_USER_NOTIF);
    always(program, SYS_munmap, SECCOMP_RET_USER_NOTIF);
  }
  if (watching->tellsUser) always(program, SYS_geteuid, SECCOMP_RET_USER_NOTIF);
  end(program, SECCOMP_RET_ALLOW);
}

int filterInstall(const Watching* watching) {
  static Program program;
  compose(&program, watching);
  const struct sock_fprog given = {program.length, program.steps};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return -1;
  // A signal must not make the kernel ask again what was answered already: a call would be counted twice.
  const unsigned long killable = SECCOMP_FILTER_FLAG_NEW_LISTENER | SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV;
  const long listener = syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, killable, &given);
  if (listener >= 0 || errno != EINVAL) return (int)listener;
  return (int)syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &given);
}
