// Nodes that come and go with the MPC mode: their files move between the tree and the folder "parked".
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "shell.h"

int nodesFindAt(const Shell* shell, int folder, const char* path, int flags) {
  struct stat status;
  // Straight to the kernel: this is done on every call.
  if (syscall(SYS_newfstatat, folder, path, &status, flags) != 0) return -1;
  return simFindNode(shell->image, status.st_dev, status.st_ino);
}

int nodesHaveBuffers(const Shell* shell, int node) {
  return node >= 0 && SIM_AT(shell->image, const SimNode, nodes)[node].kind < SIM_NODE_RENDER;
}

void nodesPath(const Shell* shell, uint32_t index, char path[SIM_NODE_PATH]) {
  char name[SIM_NODE_NAME];
  const SimNode* const node = SIM_AT(shell->image, const SimNode, nodes) + index;
  simNodeName(node, name);
  snprintf(path, SIM_NODE_PATH, "%s%s", node->kind >= SIM_NODE_RENDER ? "/dev/dri/" : "/dev/", name);
}

void nodesTraceClose(const Shell* shell, uint32_t index, int error) {
  char path[SIM_NODE_PATH];
  char spare[16];
  nodesPath(shell, index, path);
  shellTrace(shell, "close", path, error ? errnoName(error, spare) : "ok");
}

static void move(const Shell* shell, const char* path, const char* from, const char* to) {
  struct stat status;
  SimFileFault fault = {0};
  if (syscall(SYS_newfstatat, AT_FDCWD, from, &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  simFileFaults(shell->image, path, SIM_AIM_MOVE, &fault);
  if (fault.isKilled) shellKill(1);
  syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

void nodesArrange(const Shell* shell) {
  SimImage* const image = shell->image;
  const SimNode* const nodes = SIM_AT(image, const SimNode, nodes);
  const SimNodePath* const paths = SIM_AT(image, const SimNodePath, nodePaths);
  const int root = (int)(shell->treeLength - strlen("/tree"));
  char tree[PATH_MAX];
  char parked[PATH_MAX];
  for (uint32_t i = 0; i < image->nodePaths.count; ++i) {
    const char* const path = (const char*)image + paths[i].path;
    const int inTree = snprintf(tree, sizeof tree, "%s%s", shell->tree, path);
    const int inParked = snprintf(parked, sizeof parked, "%.*s/parked%s", root, shell->tree, path);
    if (inTree >= PATH_MAX || inParked >= PATH_MAX) continue;
    if (nodes[paths[i].node].present) {
      move(shell, path, parked, tree);
    } else {
      move(shell, path, tree, parked);
    }
  }
  __atomic_store_n(&image->unsettled, 0, __ATOMIC_SEQ_CST);
}

int nodesOthersOpen(SimCall* call, uint32_t owner) {
  (void)call;
  const Shell* const shell = shellGet();
  const SimNode* const nodes = SIM_AT(shell->image, const SimNode, nodes);
  char path[64];
  shellCallerPath("fd", path);
  const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
  DIR* const folder = fd < 0 ? NULL : fdopendir(fd);
  if (!folder) return 0;
  int found = 0;
  for (struct dirent* entry = readdir(folder); entry && !found; entry = readdir(folder)) {
    const int node = entry->d_name[0] == '.' ? -1 : nodesFindAt(shell, fd, entry->d_name, 0);
    found = node >= 0 && nodes[node].owner != owner;
  }
  closedir(folder);
  return found;
}
