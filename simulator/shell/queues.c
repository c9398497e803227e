// Event queues of the driver. A descriptor has a queue of its own: a FIFO below the host's folder "events",
// made when event_report is opened, so that epoll and close work by themselves and any process of the host
// can put a message in.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "shell.h"

enum {
  kQueueMessages = 64,
  kQueueSize = SHELL_MESSAGE_SIZE * kQueueMessages,
  // A pipe has room again only when a whole page of it was read.
  kPipeSize = 2 * kQueueSize,
};

static int wereOpened;

int queuesWereOpened(void) {
  return __atomic_load_n(&wereOpened, __ATOMIC_ACQUIRE);
}

// "<root>/events/gpuN/NAME" for the path of an event_report; 0 when it is too long.
static int queuePath(const Shell* shell, const char* gpu, size_t gpuLength, const char* name,
                     char path[PATH_MAX]) {
  const size_t root = shell->treeLength - strlen("/tree");
  const int length =
      snprintf(path, PATH_MAX, "%.*s/events/%.*s/%s", (int)root, shell->tree, (int)gpuLength, gpu, name);
  return length > 0 && length < PATH_MAX;
}

// What waits for whoever opens the queue; the newest that it can hold.
static void putWaiting(int queue, const char* path) {
  char messages[kQueueSize];
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return;
  const off_t size = lseek(fd, 0, SEEK_END);
  const off_t from = size > kQueueSize ? size - kQueueSize : 0;
  const ssize_t got = pread(fd, messages, sizeof messages, from);
  shellClose(fd);
  if (got > 0 && write(queue, messages, (size_t)got) != got) return;
}

int queueOpen(const Shell* shell, const char* logical, int flags) {
  static unsigned opened;
  static const char start[] = "/proc/driver/vela/";
  const char* const gpu = logical + sizeof start - 1;
  const size_t length = strcspn(gpu, "/");
  char name[48];
  char path[PATH_MAX];
  int made;
  // Names of an earlier program with the same number may be there still.
  do {
    snprintf(name, sizeof name, "%d.%u.queue", (int)getpid(),
             __atomic_add_fetch(&opened, 1, __ATOMIC_RELAXED));
    made = queuePath(shell, gpu, length, name, path) ? mkfifo(path, 0600) : -1;
  } while (made != 0 && errno == EEXIST);
  if (made != 0) {
    errno = EIO;
    return -1;
  }
  // Opened for reading alone, a queue without a writer would wait for one.
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_NONBLOCK | (flags & O_CLOEXEC));
  if (fd < 0) return fd;
  fcntl(fd, F_SETPIPE_SZ, kPipeSize);
  if (queuePath(shell, gpu, length, "waiting", path)) putWaiting(fd, path);
  __atomic_store_n(&wereOpened, 1, __ATOMIC_RELEASE);
  return fd;
}

static void empty(const char* path) {
  char message[SHELL_MESSAGE_SIZE];
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return;
  while (syscall(SYS_read, fd, message, sizeof message) > 0) {
  }
  shellClose(fd);
}

void queuesEmpty(const Shell* shell, uint32_t gpuIndex) {
  char gpu[16];
  char path[PATH_MAX];
  const size_t length = (size_t)snprintf(gpu, sizeof gpu, "gpu%u", gpuIndex);
  if (queuePath(shell, gpu, length, "waiting", path)) syscall(SYS_unlinkat, AT_FDCWD, path, 0);
  if (!queuePath(shell, gpu, length, "", path)) return;
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
  DIR* const folder = fd < 0 ? NULL : fdopendir(fd);
  if (!folder) return;
  for (struct dirent* entry = readdir(folder); entry; entry = readdir(folder)) {
    const size_t nameLength = strlen(entry->d_name);
    if (nameLength < 6 || strcmp(entry->d_name + nameLength - 6, ".queue") != 0) continue;
    if (queuePath(shell, gpu, length, entry->d_name, path)) empty(path);
  }
  closedir(folder);
}

int queueIs(const Shell* shell, const char* link) {
  char path[PATH_MAX];
  const ssize_t length = syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
  const size_t root = shell->treeLength - strlen("/tree");
  return length > (ssize_t)root + 8 && memcmp(path, shell->tree, root) == 0 &&
         strncmp(path + root, "/events/", 8) == 0;
}

// One message, or nothing when there is none; never less than a message.
ssize_t queueRead(int fd, void* to, size_t size) {
  if (size < SHELL_MESSAGE_SIZE) {
    errno = EINVAL;
    return -1;
  }
  const ssize_t got = syscall(SYS_read, fd, to, (size_t)SHELL_MESSAGE_SIZE);
  return got < 0 && errno == EAGAIN ? 0 : got;
}
