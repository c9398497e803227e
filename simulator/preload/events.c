// Reading the driver's event queues.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "preload.h"

static int isQueue(int fd) {
  struct stat status;
  if (syscall(SYS_newfstatat, fd, "", &status, AT_EMPTY_PATH) != 0 || !S_ISFIFO(status.st_mode)) return 0;
  char link[40];
  snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  return queueIs(shellGet(), link);
}

// Reading is looked at only in programs that have opened a queue.
static int isFromQueue(int fd) {
  if (!queuesWereOpened()) return 0;
  const int saved = errno;
  const int queue = isQueue(fd);
  errno = saved;
  return queue;
}

SHELL_EXPORT ssize_t read(int fd, void* to, size_t size) {
  typedef ssize_t (*Read)(int, void*, size_t);
  return isFromQueue(fd) ? queueRead(fd, to, size) : REAL(Read, "read")(fd, to, size);
}

ssize_t __read_chk(int fd, void* to, size_t size, size_t room);
SHELL_EXPORT ssize_t __read_chk(int fd, void* to, size_t size, size_t room) {
  typedef ssize_t (*Read)(int, void*, size_t, size_t);
  if (queuesWereOpened() && size <= room) return read(fd, to, size);
  return REAL(Read, "__read_chk")(fd, to, size, room);
}
