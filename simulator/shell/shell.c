#include "shell.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
static int lockFd = -1;
static char imagePath[PATH_MAX];

// Descriptors of ours start here, out of the way of programs that count on the low ones.
enum { kFirstFd = 900 };

// The shell's own files are opened without going through what it interposes.
static int openOwn(const char* path, int flags) {
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC, 0644);
  if (fd < 0) return fd;
  const int high = fcntl(fd, F_DUPFD_CLOEXEC, kFirstFd);
  if (high < 0) return fd;
  shellClose(fd);
  return high;
}

static void mapImage(Shell* shell) {
  lockFd = openOwn(imagePath, O_RDWR);
  if (lockFd < 0) shellGiveUp("no image of a host", imagePath);
  struct stat status;
  if (fstat(lockFd, &status) != 0 || status.st_size < (off_t)sizeof(SimImage)) {
    shellGiveUp("not an image of a host", imagePath);
  }
  // Not by the name mmap, which is interposed and would come here again.
  void* const memory =
      (void*)syscall(SYS_mmap, NULL, (size_t)status.st_size, PROT_READ | PROT_WRITE, MAP_SHARED, lockFd, 0L);
  if (memory == MAP_FAILED) shellGiveUp("cannot map the image of a host", imagePath);
  shell->image = memory;
  if (shell->image->magic != SIM_IMAGE_MAGIC || shell->image->layout != SIM_IMAGE_LAYOUT ||
      shell->image->size != (uint64_t)status.st_size) {
    shellGiveUp("not an image of a host, or of another version", imagePath);
  }
}

void shellBeforeFork(void) {
  pthread_mutex_lock(&mutex);
}
void shellAfterFork(void) {
  pthread_mutex_unlock(&mutex);
}

// A file lock belongs to the open file, which parent and child would share.
void shellInChild(void) {
  shellClose(lockFd);
  lockFd = openOwn(imagePath, O_RDWR);
  pthread_mutex_unlock(&mutex);
}

void shellOpen(Shell* shell, const char* root, const char* trace) {
  const int length = snprintf(shell->tree, sizeof shell->tree, "%s/tree", root);
  const int image = snprintf(imagePath, sizeof imagePath, "%s/image", root);
  if ((size_t)length >= sizeof shell->tree || (size_t)image >= sizeof imagePath) {
    shellGiveUp("the folder of the host has too long a name", root);
  }
  shell->treeLength = (size_t)length;
  mapImage(shell);
  shell->traceFd = -1;
  if (trace && trace[0]) {
    shell->traceFd = openOwn(trace, O_WRONLY | O_APPEND | O_CREAT);
    if (shell->traceFd < 0) shellGiveUp("cannot write the trace", trace);
  }
}

void shellLock(void) {
  const Shell* const locked = shellGet();
  pthread_mutex_lock(&mutex);
  // A program that closes every descriptor it finds has closed this one too.
  if (flock(lockFd, LOCK_EX) != 0 && errno == EBADF) {
    lockFd = openOwn(imagePath, O_RDWR);
    flock(lockFd, LOCK_EX);
  }
  if (!locked->image->unsettled) return;
  simSettle(locked->image);
  nodesArrange(locked);
}

void shellUnlock(void) {
  flock(lockFd, LOCK_UN);
  pthread_mutex_unlock(&mutex);
}

void shellClose(int fd) {
  syscall(SYS_close, fd);
}

void shellSettle(const Shell* shell) {
  if (!__atomic_load_n(&shell->image->unsettled, __ATOMIC_ACQUIRE)) return;
  shellLock();
  shellUnlock();
}

void shellTrace(const Shell* shell, const char* operation, const char* subject, const char* result) {
  if (shell->traceFd < 0) return;
  char line[PATH_MAX + 128];
  const int length = snprintf(line, sizeof line, "%s %s %s\n", operation, subject, result);
  // One write, so that lines of threads and processes never mix.
  if (length > 0 && write(shell->traceFd, line, (size_t)length) < 0) return;
}

const char* errnoName(int error, char spare[16]) {
  const char* const name = strerrorname_np(error);
  if (name) return name;
  snprintf(spare, 16, "%d", error);
  return spare;
}
