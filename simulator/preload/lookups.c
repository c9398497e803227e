// Looking at files without opening them.
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "preload.h"

// Begins the function's access; what is the machine's own goes straight to `real`. `result` is that of
// `real` for the host's file.
#define LOOK(operation, path, real, ...)                                                 \
  Access look;                                                                           \
  if (!accessBegin(&look, operation, path, ACCESS_LOOK)) return real(path, __VA_ARGS__); \
  const long result = look.fault.error ? accessFail(&look) : real(look.host, __VA_ARGS__)

#define LOOK_AT(operation, folder, path, real, ...)                                              \
  Access look;                                                                                   \
  if (!accessBegin(&look, operation, path, ACCESS_LOOK)) return real(folder, path, __VA_ARGS__); \
  const long result = look.fault.error ? accessFail(&look) : real(folder, look.host, __VA_ARGS__)

// ---- access

typedef int (*Access2)(const char*, int);
typedef int (*Access4)(int, const char*, int, int);

#define DEFINE_ACCESS(name)                           \
  SHELL_EXPORT int name(const char* path, int mode) { \
    LOOK("access", path, REAL(Access2, #name), mode); \
    accessEnd(&look, result != 0);                    \
    return (int)result;                               \
  }
DEFINE_ACCESS(access)
DEFINE_ACCESS(euidaccess)
DEFINE_ACCESS(eaccess)

SHELL_EXPORT int faccessat(int folder, const char* path, int mode, int flags) {
  LOOK_AT("access", folder, path, REAL(Access4, "faccessat"), mode, flags);
  accessEnd(&look, result != 0);
  return (int)result;
}

// ---- stat

#define DEFINE_STAT(name, type)                                                  \
  SHELL_EXPORT int name(const char* path, struct type* status) {                 \
    typedef int (*Stat)(const char*, struct type*);                              \
    LOOK("stat", path, REAL(Stat, #name), status);                               \
    if (result == 0) accessPatchMode(&look, &status->st_mode, &status->st_rdev); \
    accessEnd(&look, result != 0);                                               \
    return (int)result;                                                          \
  }
DEFINE_STAT(stat, stat)
DEFINE_STAT(lstat, stat)
DEFINE_STAT(stat64, stat64)
DEFINE_STAT(lstat64, stat64)

#define DEFINE_STATAT(name, type)                                                       \
  SHELL_EXPORT int name(int folder, const char* path, struct type* status, int flags) { \
    typedef int (*Stat)(int, const char*, struct type*, int);                           \
    LOOK_AT("stat", folder, path, REAL(Stat, #name), status, flags);                    \
    if (result == 0) accessPatchMode(&look, &status->st_mode, &status->st_rdev);        \
    accessEnd(&look, result != 0);                                                      \
    return (int)result;                                                                 \
  }
DEFINE_STATAT(fstatat, stat)
DEFINE_STATAT(fstatat64, stat64)

// What programs that were built against an older C library call.
#define DEFINE_XSTAT(name, type)                                                                             \
  int name(int version, const char* path, struct type* status);                                              \
  SHELL_EXPORT int name(int version, const char* path, struct type* status) {                                \
    typedef int (*Stat)(int, const char*, struct type*);                                                     \
    Access look;                                                                                             \
    if (!accessBegin(&look, "stat", path, ACCESS_LOOK)) return REAL(Stat, #name)(version, path, status);     \
    const int result = look.fault.error ? accessFail(&look) : REAL(Stat, #name)(version, look.host, status); \
    if (result == 0) accessPatchMode(&look, &status->st_mode, &status->st_rdev);                             \
    accessEnd(&look, result != 0);                                                                           \
    return result;                                                                                           \
  }
DEFINE_XSTAT(__xstat, stat)
DEFINE_XSTAT(__lxstat, stat)
DEFINE_XSTAT(__xstat64, stat64)
DEFINE_XSTAT(__lxstat64, stat64)

SHELL_EXPORT int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) {
  typedef int (*Stat)(int, const char*, int, unsigned, struct statx*);
  LOOK_AT("stat", folder, path, REAL(Stat, "statx"), flags, mask, status);
  if (result == 0) accessPatchStatx(&look, status);
  accessEnd(&look, result != 0);
  return (int)result;
}

// ---- extended attributes: files of the host have none

#define DEFINE_ATTRIBUTES(name, parameters, ...)                                                            \
  SHELL_EXPORT ssize_t name parameters {                                                                    \
    Access look;                                                                                            \
    if (!accessBegin(&look, "stat", path, ACCESS_LOOK)) return REAL(Attributes_##name, #name)(__VA_ARGS__); \
    if (!look.fault.error) look.fault.error = ENOTSUP;                                                      \
    accessFail(&look);                                                                                      \
    return accessEnd(&look, -1);                                                                            \
  }
typedef ssize_t (*Attributes_getxattr)(const char*, const char*, void*, size_t);
typedef Attributes_getxattr Attributes_lgetxattr;
typedef ssize_t (*Attributes_listxattr)(const char*, char*, size_t);
typedef Attributes_listxattr Attributes_llistxattr;
DEFINE_ATTRIBUTES(getxattr, (const char* path, const char* name, void* value, size_t size), path, name, value,
                  size)
DEFINE_ATTRIBUTES(lgetxattr, (const char* path, const char* name, void* value, size_t size), path, name,
                  value, size)
DEFINE_ATTRIBUTES(listxattr, (const char* path, char* names, size_t size), path, names, size)
DEFINE_ATTRIBUTES(llistxattr, (const char* path, char* names, size_t size), path, names, size)

// ---- file systems

#define DEFINE_STATFS(name, type)                                \
  SHELL_EXPORT int name(const char* path, struct type* status) { \
    typedef int (*Stat)(const char*, struct type*);              \
    LOOK("statfs", path, REAL(Stat, #name), status);             \
    accessEnd(&look, result != 0);                               \
    return (int)result;                                          \
  }
DEFINE_STATFS(statfs, statfs)
DEFINE_STATFS(statfs64, statfs64)
DEFINE_STATFS(statvfs, statvfs)
DEFINE_STATFS(statvfs64, statvfs64)

// ---- links

ssize_t __readlink_chk(const char* path, char* text, size_t size, size_t room);
ssize_t __readlinkat_chk(int folder, const char* path, char* text, size_t size, size_t room);
char* __realpath_chk(const char* path, char* resolved, size_t room);

static ssize_t readLink(const char* path, char* text, size_t size) {
  typedef ssize_t (*Read)(const char*, char*, size_t);
  LOOK("readlink", path, REAL(Read, "readlink"), text, size);
  accessEnd(&look, result < 0);
  return result;
}

static ssize_t readLinkAt(int folder, const char* path, char* text, size_t size) {
  typedef ssize_t (*Read)(int, const char*, char*, size_t);
  LOOK_AT("readlink", folder, path, REAL(Read, "readlinkat"), text, size);
  accessEnd(&look, result < 0);
  return result;
}

SHELL_EXPORT ssize_t readlink(const char* path, char* text, size_t size) {
  return readLink(path, text, size);
}

SHELL_EXPORT ssize_t readlinkat(int folder, const char* path, char* text, size_t size) {
  return readLinkAt(folder, path, text, size);
}

SHELL_EXPORT ssize_t __readlink_chk(const char* path, char* text, size_t size, size_t room) {
  if (size > room) abort();
  return readLink(path, text, size);
}

SHELL_EXPORT ssize_t __readlinkat_chk(int folder, const char* path, char* text, size_t size, size_t room) {
  if (size > room) abort();
  return readLinkAt(folder, path, text, size);
}

static char* resolve(const char* path, char* resolved) {
  typedef char* (*Resolve)(const char*, char*);
  Access look;
  if (!accessBegin(&look, "realpath", path, ACCESS_LOOK)) return REAL(Resolve, "realpath")(path, resolved);
  char* answer = NULL;
  if (look.fault.error) {
    accessFail(&look);
  } else {
    answer = REAL(Resolve, "realpath")(look.host, resolved);
  }
  accessEnd(&look, !answer);
  return accessHidePrefix(look.shell, answer);
}

SHELL_EXPORT char* realpath(const char* path, char* resolved) {
  return resolve(path, resolved);
}

SHELL_EXPORT char* __realpath_chk(const char* path, char* resolved, size_t room) {
  if (resolved && room < PATH_MAX) abort();
  return resolve(path, resolved);
}

SHELL_EXPORT char* canonicalize_file_name(const char* path) {
  return resolve(path, NULL);
}
