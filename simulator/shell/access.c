#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "shell.h"

// What the launcher looks for is no access of the program's: it is neither struck nor traced.
static int isCanary(const Access* access) {
  return strcmp(access->logical, "/sys/.ovgpu-sim") == 0;
}

// What the machine takes away meanwhile: out of the tree, whole and at once.
static void takeAway(const Shell* shell) {
  const char* path;
  while ((path = simNextToTake(shell->image))) {
    char from[PATH_MAX];
    char to[PATH_MAX];
    const int saved = errno;
    const int fits = snprintf(from, sizeof from, "%s%s", shell->tree, path) < (int)sizeof from &&
                     snprintf(to, sizeof to, "%s-taken-%zu", shell->tree,
                              (size_t)(path - (const char*)shell->image)) < (int)sizeof to;
    if (fits) syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
    errno = saved;
  }
}

int accessBegin(Access* access, const char* operation, const char* path, enum AccessAim aim) {
  access->shell = shellGet();
  access->operation = operation;
  access->fault = (SimFileFault){.cut = -1};
  shellSettle(access->shell);
  switch (pathFind(access->shell, path, access->logical, access->host)) {
    case PATH_REAL:
      return 0;
    case PATH_REMOVED:
      access->fault.error = ENOENT;
      return 1;
    default:
      break;
  }
  if (access->shell->image->faults.count && !isCanary(access)) {
    simFileFaults(access->shell->image, access->logical, aim == ACCESS_OPEN ? SIM_AIM_OPEN : SIM_AIM_LOOK,
                  &access->fault);
    if (access->fault.isKilled) {
      shellTrace(access->shell, operation, access->logical, "killed");
      shellKill(0);
    }
    if (access->fault.takes) {
      takeAway(access->shell);
      if (pathFind(access->shell, path, access->logical, access->host) == PATH_REMOVED)
        access->fault.error = ENOENT;
    }
    if (access->fault.hangMs) shellSleepMs(access->fault.hangMs);
  }
  return 1;
}

int accessFail(Access* access) {
  errno = access->fault.error;
  return -1;
}

int accessEnd(Access* access, int failed) {
  if (access->shell->traceFd >= 0 && !isCanary(access)) {
    const int saved = errno;
    char spare[16];
    shellTrace(access->shell, access->operation, access->logical, failed ? errnoName(saved, spare) : "ok");
    errno = saved;
  }
  return failed;
}

static int isNode(const Access* access) {
  return strncmp(access->logical, "/dev/", 5) == 0;
}

static int isEventQueue(const Access* access) {
  static const char name[] = "/event_report";
  const size_t length = strlen(access->logical);
  return strncmp(access->logical, "/proc/driver/vela/", 18) == 0 && length > sizeof name &&
         strcmp(access->logical + length - (sizeof name - 1), name) == 0;
}

// A device that was removed, or has no driver, cannot be opened any more.
static int closeIfGone(const Access* access, int fd) {
  SimImage* const image = access->shell->image;
  struct stat status;
  if (fstat(fd, &status) != 0) return fd;
  const int index = simFindNode(image, status.st_dev, status.st_ino);
  if (index < 0) return fd;
  if (simIsPresent(image, (uint32_t)index)) return fd;
  shellClose(fd);
  errno = ENODEV;
  return -1;
}

static int copyUpTo(int from, int to, int64_t size) {
  char part[4096];
  while (size > 0) {
    const ssize_t got =
        syscall(SYS_read, from, part, size < (int64_t)sizeof part ? (size_t)size : sizeof part);
    if (got <= 0) return (int)got;
    if (write(to, part, (size_t)got) != got) return -1;
    size -= got;
  }
  return 0;
}

// A file in memory with what the fault leaves of `fd`, which is closed.
static int replaceContent(const Access* access, int fd) {
  const int copy = memfd_create("ovgpu-sim", MFD_CLOEXEC);
  int failed = copy < 0;
  if (!failed && access->fault.text) {
    const ssize_t size = (ssize_t)access->fault.textLength;
    failed = write(copy, access->fault.text, (size_t)size) != size;
  } else if (!failed) {
    failed = copyUpTo(fd, copy, access->fault.cut) != 0;
  }
  shellClose(fd);
  if (failed || lseek(copy, 0, SEEK_SET) != 0) {
    if (copy >= 0) shellClose(copy);
    errno = EIO;
    return -1;
  }
  return copy;
}

int accessOpenFile(const Access* access, int flags, mode_t mode) {
  int fd = (int)syscall(SYS_openat, AT_FDCWD, access->host, flags, mode);
  if (fd >= 0 && isEventQueue(access)) {
    shellClose(fd);
    fd = queueOpen(access->shell, access->logical, flags);
  }
  if (fd >= 0 && isNode(access)) fd = closeIfGone(access, fd);
  const int changed = access->fault.cut >= 0 || access->fault.text;
  if (fd >= 0 && changed && (flags & O_ACCMODE) == O_RDONLY && !(flags & O_DIRECTORY)) {
    fd = replaceContent(access, fd);
  }
  return fd;
}

char* accessHidePrefix(const Shell* shell, char* path) {
  const size_t prefix = shell->treeLength;
  if (path && strncmp(path, shell->tree, prefix) == 0 && path[prefix] == '/') {
    memmove(path, path + prefix, strlen(path + prefix) + 1);
  }
  return path;
}

void accessPatchMode(const Access* access, mode_t* mode, dev_t* device) {
  if (!isNode(access) || !S_ISREG(*mode)) return;
  const char* const digits = access->logical + strcspn(access->logical, "0123456789");
  const int isGraphics = strncmp(access->logical, "/dev/dri/", 9) == 0;
  *mode = (*mode & ~(mode_t)S_IFMT) | S_IFCHR;
  *device = makedev(isGraphics ? 226 : 10, isGraphics ? (unsigned)atoi(digits) : 64 + (unsigned)atoi(digits));
}

void accessPatchStatx(const Access* access, struct statx* status) {
  mode_t mode = status->stx_mode;
  dev_t device = makedev(status->stx_rdev_major, status->stx_rdev_minor);
  accessPatchMode(access, &mode, &device);
  status->stx_mode = (unsigned short)mode;
  status->stx_rdev_major = major(device);
  status->stx_rdev_minor = minor(device);
}
