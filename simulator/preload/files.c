// Opening files and folders.
#include "preload.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

typedef int (*OpenAt)(int, const char*, int, ...);

static mode_t modeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

static int openAt(int folder, const char* path, int flags, mode_t mode) {
  Access access;
  if (!accessBegin(&access, "open", path, ACCESS_OPEN)) {
    return REAL(OpenAt, "openat")(folder, path, flags, mode);
  }
  const int fd = access.fault.error ? accessFail(&access) : accessOpenFile(&access, flags, mode);
  accessEnd(&access, fd < 0);
  return fd;
}

#define DEFINE_OPEN(name, extra)                            \
  SHELL_EXPORT int name(const char* path, int flags, ...) { \
    va_list arguments;                                      \
    va_start(arguments, flags);                             \
    const mode_t mode = modeOf(flags, arguments);           \
    va_end(arguments);                                      \
    return openAt(AT_FDCWD, path, flags | (extra), mode);   \
  }
DEFINE_OPEN(open, 0)
DEFINE_OPEN(open64, O_LARGEFILE)

#define DEFINE_OPENAT(name, extra)                                      \
  SHELL_EXPORT int name(int folder, const char* path, int flags, ...) { \
    va_list arguments;                                                  \
    va_start(arguments, flags);                                         \
    const mode_t mode = modeOf(flags, arguments);                       \
    va_end(arguments);                                                  \
    return openAt(folder, path, flags | (extra), mode);                 \
  }
DEFINE_OPENAT(openat, 0)
DEFINE_OPENAT(openat64, O_LARGEFILE)

// What fortified programs call when there is no mode.
SHELL_EXPORT int __open_2(const char* path, int flags) {
  return openAt(AT_FDCWD, path, flags, 0);
}
SHELL_EXPORT int __open64_2(const char* path, int flags) {
  return openAt(AT_FDCWD, path, flags, 0);
}
SHELL_EXPORT int __openat_2(int folder, const char* path, int flags) {
  return openAt(folder, path, flags, 0);
}
SHELL_EXPORT int __openat64_2(int folder, const char* path, int flags) {
  return openAt(folder, path, flags, 0);
}

static int flagsOf(const char* mode) {
  const int plus = strchr(mode, '+') != NULL;
  const int closes = strchr(mode, 'e') ? O_CLOEXEC : 0;
  const int exclusive = strchr(mode, 'x') ? O_EXCL : 0;
  const int width = plus ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
  const int creates = mode[0] == 'r' ? 0 : O_CREAT | (mode[0] == 'a' ? O_APPEND : O_TRUNC);
  return width | creates | closes | exclusive;
}

static FILE* openStream(const char* path, const char* mode) {
  typedef FILE* (*Open)(const char*, const char*);
  Access access;
  if (!accessBegin(&access, "open", path, ACCESS_OPEN)) return REAL(Open, "fopen64")(path, mode);
  const int fd = access.fault.error ? accessFail(&access) : accessOpenFile(&access, flagsOf(mode), 0666);
  accessEnd(&access, fd < 0);
  if (fd < 0) return NULL;
  FILE* const stream = fdopen(fd, mode);
  if (!stream) shellClose(fd);
  return stream;
}

SHELL_EXPORT FILE* fopen(const char* path, const char* mode) {
  return openStream(path, mode);
}
SHELL_EXPORT FILE* fopen64(const char* path, const char* mode) {
  return openStream(path, mode);
}

SHELL_EXPORT DIR* opendir(const char* path) {
  typedef DIR* (*Open)(const char*);
  Access access;
  if (!accessBegin(&access, "opendir", path, ACCESS_OPEN)) return REAL(Open, "opendir")(path);
  DIR* const folder = access.fault.error ? NULL : REAL(Open, "opendir")(access.host);
  if (access.fault.error) accessFail(&access);
  accessEnd(&access, !folder);
  return folder;
}

typedef int (*Choose)(const struct dirent*);
typedef int (*Order)(const struct dirent**, const struct dirent**);

static int scanFolder(const char* path, struct dirent*** names, Choose choose, Order order) {
  typedef int (*Scan)(const char*, struct dirent***, Choose, Order);
  Access access;
  if (!accessBegin(&access, "opendir", path, ACCESS_OPEN)) {
    return REAL(Scan, "scandir")(path, names, choose, order);
  }
  const int count =
      access.fault.error ? accessFail(&access) : REAL(Scan, "scandir")(access.host, names, choose, order);
  accessEnd(&access, count < 0);
  return count;
}

SHELL_EXPORT int scandir(const char* path, struct dirent*** names, Choose choose, Order order) {
  return scanFolder(path, names, choose, order);
}

// The two kinds of entry are one where a long has 64 bits.
_Static_assert(sizeof(struct dirent) == sizeof(struct dirent64), "entries of folders differ");
SHELL_EXPORT int scandir64(const char* path, struct dirent64*** names, int (*choose)(const struct dirent64*),
                           int (*order)(const struct dirent64**, const struct dirent64**)) {
  return scanFolder(path, (struct dirent***)names, (Choose)choose, (Order)order);
}
