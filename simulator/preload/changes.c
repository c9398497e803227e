// Making, moving and removing files: what a program does to the host must not happen to the machine.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "preload.h"

#define DEFINE_CHANGE(name, parameters, onMachine, onHost)                    \
  SHELL_EXPORT int name parameters {                                          \
    Access change;                                                            \
    if (!accessBegin(&change, "change", path, ACCESS_LOOK)) return onMachine; \
    const int result = change.fault.error ? accessFail(&change) : onHost;     \
    accessEnd(&change, result != 0);                                          \
    return result;                                                            \
  }

typedef int (*Change)(const char*);
typedef int (*ChangeMode)(const char*, mode_t);
typedef int (*ChangeAt)(int, const char*, unsigned);

#define ONE(name) REAL(Change, name)
#define MODE(name) REAL(ChangeMode, name)
#define AT(name) REAL(ChangeAt, name)

DEFINE_CHANGE(unlink, (const char* path), ONE("unlink")(path), ONE("unlink")(change.host))
DEFINE_CHANGE(rmdir, (const char* path), ONE("rmdir")(path), ONE("rmdir")(change.host))
DEFINE_CHANGE(remove, (const char* path), ONE("remove")(path), ONE("remove")(change.host))
DEFINE_CHANGE(mkdir, (const char* path, mode_t mode), MODE("mkdir")(path, mode),
              MODE("mkdir")(change.host, mode))
DEFINE_CHANGE(mkdirat, (int folder, const char* path, mode_t mode), AT("mkdirat")(folder, path, mode),
              AT("mkdirat")(folder, change.host, mode))
DEFINE_CHANGE(unlinkat, (int folder, const char* path, int flags),
              AT("unlinkat")(folder, path, (unsigned)flags),
              AT("unlinkat")(folder, change.host, (unsigned)flags))

SHELL_EXPORT int rename(const char* from, const char* to) {
  typedef int (*Rename)(const char*, const char*);
  Access source;
  Access target;
  const int fromHost = accessBegin(&source, "change", from, ACCESS_LOOK);
  const int toHost = accessBegin(&target, "change", to, ACCESS_LOOK);
  int result;
  if (fromHost && source.fault.error) {
    result = accessFail(&source);
  } else if (toHost && target.fault.error) {
    result = accessFail(&target);
  } else {
    result = REAL(Rename, "rename")(fromHost ? source.host : from, toHost ? target.host : to);
  }
  if (fromHost) accessEnd(&source, result != 0);
  if (toHost) accessEnd(&target, result != 0);
  return result;
}

// ---- the folder that relative paths begin in

SHELL_EXPORT int chdir(const char* path) {
  Access access;
  if (!accessBegin(&access, "chdir", path, ACCESS_LOOK)) return REAL(Change, "chdir")(path);
  const int result = access.fault.error ? accessFail(&access) : REAL(Change, "chdir")(access.host);
  accessEnd(&access, result != 0);
  return result;
}

SHELL_EXPORT char* getcwd(char* text, size_t size) {
  typedef char* (*Get)(char*, size_t);
  return accessHidePrefix(shellGet(), REAL(Get, "getcwd")(text, size));
}
