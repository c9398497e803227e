#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "shell.h"

enum Rule {
  RULE_WHOLE,    // this path and all below it are the host's, whether it has them or not
  RULE_PREFIX,   // every path that begins so
  RULE_EXACT,    // this path alone is the host's
  RULE_REAL,     // this path alone is the machine's
  RULE_OVERLAY,  // below this path the host's files hide the machine's
};

// The first row that fits decides.
static const struct {
  const char* path;
  enum Rule rule;
} rules[] = {
    {"/sys", RULE_WHOLE},          {"/proc/driver/vela", RULE_WHOLE},
    {"/proc", RULE_REAL},          {"/proc", RULE_OVERLAY},
    {"/dev", RULE_EXACT},          {"/dev/dri", RULE_WHOLE},
    {"/dev/ovgpu.", RULE_PREFIX},  {"/dev/ac_dev", RULE_WHOLE},
    {"/dev/npucore", RULE_WHOLE},  {"/dev/ion", RULE_PREFIX},
    {"/dev", RULE_OVERLAY},        {"/var/log/ovgpu", RULE_WHOLE},
    {"/etc/ovparams", RULE_WHOLE},
};

static int ruleFits(enum Rule rule, const char* start, const char* path) {
  const size_t length = strlen(start);
  if (strncmp(path, start, length) != 0) return 0;
  const char after = path[length];
  switch (rule) {
    case RULE_PREFIX:
      return 1;
    case RULE_EXACT:
    case RULE_REAL:
      return after == '\0';
    case RULE_OVERLAY:
      return after == '/';
    default:
      return after == '\0' || after == '/';
  }
}

// Without doubled slashes, single dots and a slash at the end. False when it is too long.
static int tidy(const char* path, char to[PATH_MAX]) {
  size_t length = 0;
  while (*path) {
    if (path[0] == '/' && (path[1] == '/' || path[1] == '\0')) {
      ++path;
      continue;
    }
    if (path[0] == '/' && path[1] == '.' && (path[2] == '/' || path[2] == '\0')) {
      path += 2;
      continue;
    }
    if (length + 1 >= PATH_MAX) return 0;
    to[length++] = *path++;
  }
  to[length] = '\0';
  return 1;
}

static int isRemoved(const SimImage* image, const char* path) {
  const uint32_t* const removed = SIM_AT(image, const uint32_t, removed);
  for (uint32_t i = 0; i < image->removed.count; ++i) {
    if (strcmp((const char*)image + removed[i], path) == 0) return 1;
  }
  return 0;
}

static int typeOf(const char* path) {
  struct stat status;
  return syscall(SYS_newfstatat, AT_FDCWD, path, &status, AT_SYMLINK_NOFOLLOW) == 0
             ? (int)(status.st_mode & S_IFMT)
             : 0;
}

static enum PathKind findInOverlay(const Shell* shell, const char* logical, const char* host) {
  if (isRemoved(shell->image, logical) || simIsTaken(shell->image, logical)) return PATH_REMOVED;
  const int saved = errno;
  const int type = typeOf(host);
  // A folder of the host is the machine's when that has it too: /proc/<pid> must stay whole.
  const int mine = type != 0 && (type != S_IFDIR || strcmp(logical, "/proc/driver") == 0 || !typeOf(logical));
  errno = saved;
  return mine ? PATH_HOST : PATH_REAL;
}

enum PathKind pathFind(const Shell* shell, const char* path, char logical[PATH_MAX], char host[PATH_MAX]) {
  if (!path || path[0] != '/' || !tidy(path, logical)) return PATH_REAL;
  for (size_t i = 0; i < sizeof rules / sizeof rules[0]; ++i) {
    if (!ruleFits(rules[i].rule, rules[i].path, logical)) continue;
    if (rules[i].rule == RULE_REAL) return PATH_REAL;
    const size_t length = strlen(logical);
    if (shell->treeLength + length >= PATH_MAX) return PATH_REAL;
    memcpy(host, shell->tree, shell->treeLength);
    memcpy(host + shell->treeLength, logical, length + 1);
    return rules[i].rule == RULE_OVERLAY ? findInOverlay(shell, logical, host) : PATH_HOST;
  }
  return PATH_REAL;
}
