// What all ways to show a host to a program share: the host's image and tree, one access of a file, one call
// on a node. It runs in the program that looks (preload) or in one beside it (supervisor).
//
// Files of the shell's own are opened straight by the kernel's calls, past what a preloaded library
// interposes. There is no table of descriptors: a node is told by the file behind the descriptor, which stays
// right over dup, fork and close.
#ifndef SHELL_H
#define SHELL_H

#include <limits.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/stat.h>
#include <sys/types.h>

#include "sim_model.h"

typedef struct Shell {
  SimImage* image;
  char tree[PATH_MAX];  // canonical folder that holds the files of the host
  size_t treeLength;
  int traceFd;  // -1 when nothing is traced
} Shell;

// ---- what each way has of its own

// Ends the process when there is no host to show: going on would mean the real machine.
const Shell* shellGet(void);

// Says what there is no going on without, and ends the process.
_Noreturn void shellGiveUp(const char* what, const char* which);

// Ends the process that looks as a kill from outside would, whatever it holds. Does not return; `isLocked`
// says whether the lock is held.
_Noreturn void shellKill(int isLocked);

void shellSleepMs(uint64_t ms);

// The file `name` of the process that looks, below /proc.
void shellCallerPath(const char* name, char path[64]);

// ---- the host

// Maps the image of the host in the folder `root`; `trace` may be null.
void shellOpen(Shell* shell, const char* root, const char* trace);

// Only one call at a time changes the host, among threads and processes. What a killed process has left
// half done is done when the lock is there.
void shellLock(void);
void shellUnlock(void);

// Waits for a change of the nodes that is under way; without the lock, before the tree is looked at.
void shellSettle(const Shell* shell);

// Around a fork of the process: no thread may hold the lock, and the child opens one of its own.
void shellBeforeFork(void);
void shellAfterFork(void);
void shellInChild(void);

// Closes a descriptor of the shell's own, which is no access of the program's.
void shellClose(int fd);

// Appends one line to the trace; `operation`, `subject` and `result` as README.md tells.
void shellTrace(const Shell* shell, const char* operation, const char* subject, const char* result);

// Name of an errno, such as ENOENT; a number as text when it has none here.
const char* errnoName(int error, char spare[16]);

// ---- paths

enum PathKind {
  PATH_REAL,     // the machine's own
  PATH_HOST,     // the simulated host's
  PATH_REMOVED,  // hidden from the program
};

// Where `path` leads. For PATH_HOST `logical` gets the path as the program means it, `host` the file.
enum PathKind pathFind(const Shell* shell, const char* path, char logical[PATH_MAX], char host[PATH_MAX]);

// ---- one access of a path of the host

typedef struct Access {
  const Shell* shell;
  const char* operation;
  SimFileFault fault;
  char logical[PATH_MAX];
  char host[PATH_MAX];
} Access;

enum AccessAim { ACCESS_LOOK, ACCESS_OPEN };

// False: the path is the machine's own and the real function is to be called with it. True: the host's;
// the access was counted and delayed. `access->fault.error` not 0: it fails so.
int accessBegin(Access* access, const char* operation, const char* path, enum AccessAim aim);

// Traces how the access ended and leaves errno as the access set it. Returns `failed`.
int accessEnd(Access* access, int failed);

// Sets errno to the fault's and returns -1.
int accessFail(Access* access);

// Opens the file of an access, flags as the program gave them.
int accessOpenFile(const Access* access, int flags, mode_t mode);

// Takes the folder of the tree off the front of a resolved path, in place; null stays null.
char* accessHidePrefix(const Shell* shell, char* path);

// Like a device node, if it stands for one.
void accessPatchMode(const Access* access, mode_t* mode, dev_t* device);
void accessPatchStatx(const Access* access, struct statx* status);

// ---- nodes

enum { SIM_NODE_PATH = SIM_NODE_NAME + 16 };

// Index of the node that a path or descriptor leads to, or -1; as fstatat.
int nodesFindAt(const Shell* shell, int folder, const char* path, int flags);
static inline int nodesFind(const Shell* shell, int fd) {
  return nodesFindAt(shell, fd, "", 0x1000 /* AT_EMPTY_PATH */);
}

void nodesPath(const Shell* shell, uint32_t node, char path[SIM_NODE_PATH]);

// Whether memory can be shared over the node; -1 is none.
int nodesHaveBuffers(const Shell* shell, int node);

void nodesTraceClose(const Shell* shell, uint32_t node, int error);

// Brings the files of nodes that come and go in line with the image, which is settled then. The lock is held.
void nodesArrange(const Shell* shell);

// Whether the process that looks has a node of another device open; as SimCall.othersOpen.
int nodesOthersOpen(SimCall* call, uint32_t owner);

// ---- calls

// A call with what the shell has to know of it.
typedef struct NodeCall {
  SimCall call;  // the first member, so that one stands for the other
  int fd;        // of the caller
} NodeCall;

// Whether a request is of a type that nodes answer.
int callIsForNodes(uint32_t request);

// Answers a call of which memory, buffers, node, request and argument are set. Returns its errno.
int callAnswer(const Shell* shell, NodeCall* own);

// ---- shared memory

// As SimCall.buffers, of a NodeCall whose descriptor is this process's.
extern const SimBuffers buffersOfNodes;

// The number that an open node keeps for the driver.
uint64_t bufferHeldAt(int fd);

// The parts of SimBuffers that are the same whoever the caller is.
int bufferMake(SimCall* call, uint32_t id, size_t size);
int bufferFill(SimCall* call, uint32_t id, const void* from, size_t size);
void bufferDrop(SimCall* call, uint32_t id);

// Counts the mapping of a node against the faults and waits as they say; the errno that it fails with, or 0.
int mappingBegin(uint32_t node);

// A descriptor of the file to map in place of the node, to be closed; -1 and errno if there is none.
int mappingBuffer(uint64_t held, size_t size, int64_t from);

// Mappings that are there, to be told of when they go. `process` tells the callers of a shell apart.
void mappingRemember(int process, uint64_t at, uint32_t node);

// The node that was mapped there, or -1.
int mappingForget(int process, uint64_t at);

void mappingTrace(const char* operation, uint32_t node, int error);

// ---- event queues

enum { SHELL_MESSAGE_SIZE = 256 };

// A new queue for the event_report at that path.
int queueOpen(const Shell* shell, const char* logical, int flags);

// Whether this shell has opened one.
int queuesWereOpened(void);

// Whether a link of procfs leads to a queue.
int queueIs(const Shell* shell, const char* link);

// As a read of event_report answers.
ssize_t queueRead(int fd, void* to, size_t size);

// Empties all queues of a GPU.
void queuesEmpty(const Shell* shell, uint32_t gpuIndex);

#endif
