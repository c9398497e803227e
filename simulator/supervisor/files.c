// System calls that name files.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "asked.h"

typedef struct PathCall {
  long number;
  const char* operation;
  int pathAt;
  long (*run)(Asked* asked, const Access* access);  // -1 and errno when it fails
} PathCall;

static long copied(const Asked* asked, int at, const void* from, size_t size) {
  if (memoryWrite(asked, askedArgument(asked, at), from, size) == 0) return 0;
  errno = EFAULT;
  return -1;
}

static int flagsAt(const Asked* asked, int at) {
  return (int)askedArgument(asked, at);
}

// The mode that a new file gets from its maker.
static mode_t modeAt(const Asked* asked, int at) {
  const long mask = statusField(asked, "\nUmask:", 8);
  return (mode_t)askedArgument(asked, at) & ~(mode_t)(mask < 0 ? 022 : mask);
}

// ---- looking

static long lookAt(Asked* asked, const Access* access, int flags, int to) {
  struct stat status;
  if (syscall(SYS_newfstatat, AT_FDCWD, access->host, &status, flags) != 0) return -1;
  accessPatchMode(access, &status.st_mode, &status.st_rdev);
  return copied(asked, to, &status, sizeof status);
}

static long runStat(Asked* asked, const Access* access) {
  return lookAt(asked, access, 0, 1);
}
static long runLstat(Asked* asked, const Access* access) {
  return lookAt(asked, access, AT_SYMLINK_NOFOLLOW, 1);
}
static long runStatAt(Asked* asked, const Access* access) {
  return lookAt(asked, access, flagsAt(asked, 3), 2);
}

static long runStatx(Asked* asked, const Access* access) {
  struct statx status;
  if (syscall(SYS_statx, AT_FDCWD, access->host, flagsAt(asked, 2), flagsAt(asked, 3), &status) != 0)
    return -1;
  accessPatchStatx(access, &status);
  return copied(asked, 4, &status, sizeof status);
}

static long runAccess(Asked* asked, const Access* access) {
  return syscall(SYS_faccessat, AT_FDCWD, access->host, flagsAt(asked, 1));
}
static long runAccessAt(Asked* asked, const Access* access) {
  return syscall(SYS_faccessat, AT_FDCWD, access->host, flagsAt(asked, 2));
}
static long runAccessAt2(Asked* asked, const Access* access) {
  return syscall(SYS_faccessat2, AT_FDCWD, access->host, flagsAt(asked, 2), flagsAt(asked, 3));
}

static long runStatfs(Asked* asked, const Access* access) {
  struct statfs status;
  if (syscall(SYS_statfs, access->host, &status) != 0) return -1;
  return copied(asked, 1, &status, sizeof status);
}

static long readLink(Asked* asked, const Access* access, int to) {
  char text[PATH_MAX];
  const int64_t room = flagsAt(asked, to + 1);
  if (room <= 0) {
    errno = EINVAL;
    return -1;
  }
  const size_t size = room < PATH_MAX ? (size_t)room : PATH_MAX;
  const long length = syscall(SYS_readlinkat, AT_FDCWD, access->host, text, size);
  return length < 0 || copied(asked, to, text, (size_t)length) != 0 ? -1 : length;
}
static long runReadLink(Asked* asked, const Access* access) {
  return readLink(asked, access, 1);
}
static long runReadLinkAt(Asked* asked, const Access* access) {
  return readLink(asked, access, 2);
}

// Files of the host have no extended attributes.
static long runAttributes(Asked* asked, const Access* access) {
  (void)asked;
  (void)access;
  errno = ENOTSUP;
  return -1;
}

// ---- opening: the result is a descriptor of this process

static long openWith(const Access* access, int flags, mode_t mode) {
  return accessOpenFile(access, flags | O_CLOEXEC, mode);
}

static int createsFile(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

static long openFrom(Asked* asked, const Access* access, int at) {
  const int flags = flagsAt(asked, at);
  return openWith(access, flags, createsFile(flags) ? modeAt(asked, at + 1) : 0);
}
static long runOpen(Asked* asked, const Access* access) {
  return openFrom(asked, access, 1);
}
static long runOpenAt(Asked* asked, const Access* access) {
  return openFrom(asked, access, 2);
}
static long runCreate(Asked* asked, const Access* access) {
  return openWith(access, O_WRONLY | O_CREAT | O_TRUNC, modeAt(asked, 1));
}

static int openFlags(const Asked* asked) {
  switch (asked->notif.data.nr) {
    case SYS_open:
      return flagsAt(asked, 1);
    case SYS_openat:
      return flagsAt(asked, 2);
    default:
      return O_WRONLY;
  }
}

// ---- changing

static long runUnlink(Asked* asked, const Access* access) {
  (void)asked;
  return syscall(SYS_unlinkat, AT_FDCWD, access->host, 0);
}
static long runRemoveFolder(Asked* asked, const Access* access) {
  (void)asked;
  return syscall(SYS_unlinkat, AT_FDCWD, access->host, AT_REMOVEDIR);
}
static long runUnlinkAt(Asked* asked, const Access* access) {
  return syscall(SYS_unlinkat, AT_FDCWD, access->host, flagsAt(asked, 2));
}
static long runMakeFolder(Asked* asked, const Access* access) {
  return syscall(SYS_mkdirat, AT_FDCWD, access->host, modeAt(asked, 1));
}
static long runMakeFolderAt(Asked* asked, const Access* access) {
  return syscall(SYS_mkdirat, AT_FDCWD, access->host, modeAt(asked, 2));
}

// The folder of a process is its own to change.
static long runChdir(Asked* asked, const Access* access) {
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, access->host, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
  if (fd < 0) return -1;
  const uint64_t arguments[6] = {0};
  const int64_t result = answerByStandIn(asked, fd, 0, SYS_fchdir, arguments);
  if (result >= 0) return 0;
  errno = (int)-result;
  return -1;
}

static const PathCall calls[] = {
    {SYS_openat, "open", 1, runOpenAt},
    {SYS_open, "open", 0, runOpen},
    {SYS_creat, "open", 0, runCreate},
    {SYS_newfstatat, "stat", 1, runStatAt},
    {SYS_stat, "stat", 0, runStat},
    {SYS_lstat, "stat", 0, runLstat},
    {SYS_statx, "stat", 1, runStatx},
    {SYS_readlink, "readlink", 0, runReadLink},
    {SYS_readlinkat, "readlink", 1, runReadLinkAt},
    {SYS_access, "access", 0, runAccess},
    {SYS_faccessat, "access", 1, runAccessAt},
    {SYS_faccessat2, "access", 1, runAccessAt2},
    {SYS_statfs, "statfs", 0, runStatfs},
    {SYS_getxattr, "stat", 0, runAttributes},
    {SYS_lgetxattr, "stat", 0, runAttributes},
    {SYS_listxattr, "stat", 0, runAttributes},
    {SYS_llistxattr, "stat", 0, runAttributes},
    {SYS_unlink, "change", 0, runUnlink},
    {SYS_unlinkat, "change", 1, runUnlinkAt},
    {SYS_rmdir, "change", 0, runRemoveFolder},
    {SYS_mkdir, "change", 0, runMakeFolder},
    {SYS_mkdirat, "change", 1, runMakeFolderAt},
    {SYS_chdir, "chdir", 0, runChdir},
};

static const PathCall* findCall(long number) {
  for (size_t i = 0; i < sizeof calls / sizeof calls[0]; ++i) {
    if (calls[i].number == number) return &calls[i];
  }
  return NULL;
}

// As the C library's opendir opens, and hardly anything else.
static int isOpendir(int flags) {
  return (flags & (O_DIRECTORY | O_NONBLOCK)) == (O_DIRECTORY | O_NONBLOCK);
}

// Two paths, of which each may be the host's.
static void answerRename(Asked* asked, int fromAt, int toAt) {
  char paths[2][PATH_MAX];
  const int places[2] = {fromAt, toAt};
  Access ends[2];
  int ofHost[2];
  int error = 0;
  for (int i = 0; i < 2; ++i) {
    if (memoryReadText(asked, paths[i], askedArgument(asked, places[i])) != 0) {
      answerByKernel(asked);
      return;
    }
  }
  for (int i = 0; i < 2; ++i) {
    ofHost[i] = accessBegin(&ends[i], "change", paths[i], ACCESS_LOOK);
    if (ofHost[i] && !error) error = ends[i].fault.error;
  }
  if (!ofHost[0] && !ofHost[1]) {
    answerByKernel(asked);
    return;
  }
  const char* names[2];
  for (int i = 0; i < 2; ++i) {
    names[i] = ofHost[i] ? ends[i].host : paths[i];
    // A path from the caller's own folder on, beside one of the host.
    if (names[i][0] != '/' && !error) error = EXDEV;
  }
  const unsigned flags = asked->notif.data.nr == SYS_renameat2 ? (unsigned)askedArgument(asked, 4) : 0;
  if (!error && syscall(SYS_renameat2, AT_FDCWD, names[0], AT_FDCWD, names[1], flags) != 0) error = errno;
  for (int i = 0; i < 2; ++i) {
    errno = error;
    if (ofHost[i]) accessEnd(&ends[i], error != 0);
  }
  answerWith(asked, 0, error);
}

static void answerPath(Asked* asked, const PathCall* call) {
  char path[PATH_MAX];
  const int opens = call->run == runOpenAt || call->run == runOpen || call->run == runCreate;
  const int flags = opens ? openFlags(asked) : 0;
  Access access;
  if (memoryReadText(asked, path, askedArgument(asked, call->pathAt)) != 0 || path[0] != '/') {
    answerByKernel(asked);
    return;
  }
  if (!askedIsValid(asked)) return;
  if (!accessBegin(&access, isOpendir(flags) ? "opendir" : call->operation, path,
                   opens ? ACCESS_OPEN : ACCESS_LOOK)) {
    answerByKernel(asked);
    return;
  }
  // One that was killed while it waited does nothing any more.
  if (access.fault.hangMs && !askedIsValid(asked)) return;
  const long result = access.fault.error ? accessFail(&access) : call->run(asked, &access);
  const int error = result < 0 ? errno : 0;
  accessEnd(&access, result < 0);
  if (opens && !error) {
    struct stat status;
    const int isQueue = fstat((int)result, &status) == 0 && S_ISFIFO(status.st_mode);
    answerWithFd(asked, (int)result, flags, isQueue ? kFirstQueueFd : 0);
  } else if (!asked->isAnswered) {
    answerWith(asked, result, error);
  }
}

int answerPaths(Asked* asked) {
  const int number = asked->notif.data.nr;
  if (number == SYS_rename) {
    answerRename(asked, 0, 1);
  } else if (number == SYS_renameat || number == SYS_renameat2) {
    answerRename(asked, 1, 3);
  } else {
    const PathCall* const call = findCall(number);
    if (!call) return 0;
    answerPath(asked, call);
  }
  return 1;
}
