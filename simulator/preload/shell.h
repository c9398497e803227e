// What all parts of the preload library share: the host's image and tree, and one file access.
//
// The library is loaded into any program and may be called before its constructors have run, so
// everything is made on first use. It keeps no table of descriptors: a node is told by the file behind
// the descriptor, which stays right over dup, fork and close.
#ifndef SHELL_H
#define SHELL_H

#include <limits.h>
#include <stddef.h>
#include <sys/stat.h>

#include "sim_model.h"

#define SHELL_EXPORT __attribute__((visibility("default")))

typedef struct Shell {
  SimImage* image;
  char tree[PATH_MAX];  // canonical folder that holds the files of the host
  size_t treeLength;
  int traceFd;  // -1 when nothing is traced
} Shell;

// Ends the process when there is no host to show: going on would mean the real machine.
const Shell* shellGet(void);

// Only one call at a time changes the host, among threads and processes. What a killed process has left
// half done is done when the lock is there.
void shellLock(void);
void shellUnlock(void);

// Waits for a change of the nodes that is under way; without the lock, before the tree is looked at.
void shellSettle(const Shell* shell);

// Closes a descriptor of the library's own, which is no access of the program's.
void shellClose(int fd);

// Ends the process as a kill from outside would, whatever it holds.
_Noreturn void shellKill(void);

void shellSleepMs(uint64_t ms);

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
int accessOpenFile(Access* access, int flags, mode_t mode);

// Takes the folder of the tree off the front of a resolved path, in place; null stays null.
char* accessHidePrefix(const Shell* shell, char* path);

// Like a device node, if it stands for one.
void accessPatchMode(const Access* access, mode_t* mode, dev_t* device);

// ---- nodes

// Index of the node behind a descriptor, or -1.
int nodesFind(const Shell* shell, int fd);

// Brings the files of nodes that come and go in line with the image, which is settled then. The lock is held.
void nodesArrange(const Shell* shell);

// Whether this process has a node of another device open; as SimCall.othersOpen.
int nodesOthersOpen(SimCall* call, uint32_t owner);

// A call with what the shell has to know of it.
typedef struct NodeCall {
  SimCall call;  // the first member, so that one stands for the other
  int fd;
} NodeCall;

// ---- shared memory

// As SimCall.buffers, of a NodeCall.
extern const SimBuffers buffersOfNodes;

// ---- event queues

// A new queue for the event_report at that path.
int eventsOpen(const Shell* shell, const char* logical, int flags);

// Empties all queues of a GPU.
void eventsDrop(const Shell* shell, uint32_t gpuIndex);

// ---- the functions behind the interposed ones

void* shellNext(void** cache, const char* name);

// REAL(type, name) is the next definition of `name` as a function of `type`.
#define REAL(type, name)           \
  __extension__({                  \
    static void* next;             \
    (type) shellNext(&next, name); \
  })

#endif
