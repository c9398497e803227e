// The driver model: answers one ioctl on one node of a simulated host.
//
// Plain C without library calls. A shell around it (preload library, test, kernel module) says how the
// caller's memory is reached and keeps two calls that change state apart.
#ifndef SIM_MODEL_H
#define SIM_MODEL_H

#include "sim_image.h"

#ifdef __cplusplus
extern "C" {
#endif

// Errno numbers that the driver uses.
enum {
  SIM_ENOENT = 2,
  SIM_EINTR = 4,
  SIM_EIO = 5,
  SIM_EAGAIN = 11,
  SIM_ENOMEM = 12,
  SIM_EFAULT = 14,
  SIM_EBUSY = 16,
  SIM_ENODEV = 19,
  SIM_EINVAL = 22,
  SIM_ENOTTY = 25,
  SIM_ENOSPC = 28,
  SIM_EOPNOTSUPP = 95,
};

// What the driver writes into the header of a call.
enum SimStatus {
  SIM_DONE = 0,
  SIM_BAD_ARGUMENT = 1,
  SIM_UNKNOWN_INTERFACE = 2,
  SIM_BAD_SIZE = 3,
  SIM_UNKNOWN_VERSION = 4,
  SIM_NOT_SUPPORTED = 5,
  SIM_BUFFER_TOO_SMALL = 6,
  SIM_BUSY = 7,
  SIM_OUT_OF_MEMORY = 8,
  SIM_DEVICE_LOST = 9,
  SIM_FIRMWARE_FAILURE = 10,
  SIM_IO_FAILURE = 11,
  SIM_NO_SUCH_OBJECT = 12,
};

enum { SIM_MAX_RECORD = 16384 };

struct SimCall;

// Memory that driver and caller share. A descriptor keeps one number for the driver, 0 at first, which is
// gone when the last copy of the descriptor is closed.
typedef struct SimBuffers {
  uint64_t (*held)(struct SimCall* call);
  void (*hold)(struct SimCall* call, uint64_t number);
  // These return 0, or not 0 when it cannot be done.
  int (*make)(struct SimCall* call, uint32_t id, size_t size);
  int (*fill)(struct SimCall* call, uint32_t id, const void* from, size_t size);
  void (*drop)(struct SimCall* call, uint32_t id);
} SimBuffers;

// The buffer that a descriptor's number stands for; 0 none.
static inline uint32_t simBufferOf(uint64_t held) {
  return (uint32_t)(held >> 16);
}

// One ioctl: what is asked, a buffer to work in, what came of it.
typedef struct SimCall {
  // Filled by the shell. Both return 0, or not 0 when the memory cannot be reached.
  int (*readMemory)(struct SimCall* call, void* to, uint64_t address, size_t size);
  int (*writeMemory)(struct SimCall* call, uint64_t address, const void* from, size_t size);
  // Whether the caller has a node of a device open that is not `owner`'s, the index of a misc node. Null
  // stands for no.
  int (*othersOpen)(struct SimCall* call, uint32_t owner);
  const SimBuffers* buffers;  // null: the caller cannot share memory
  uint32_t node;              // index in the node table
  uint32_t request;
  uint64_t argument;

  // Filled by the model.
  int error;             // errno, 0 when the ioctl succeeds
  uint32_t status;       // enum SimStatus; protocol 1
  uint8_t kind;          // enum SimCallKind
  uint8_t hasInterface;  // the next two are told
  uint8_t dropsEvents;   // the shell has to empty the event queues of the node's GPU
  uint8_t isUnexpected;  // the driver did not offer what was asked for
  uint8_t isKilled;      // the shell has to kill the caller
  uint8_t command;       // to the firmware
  uint16_t version;
  uint32_t interfaceName;
  uint64_t hangMs;  // to be waited, outside of any lock, before the answer is handed over
  uint8_t buffer[SIM_MAX_RECORD];
} SimCall;

// Answers the call; the result is call->error. If the image is unsettled afterwards, the shell has to bring
// the paths of the nodes in line, and to say that it has.
int simIoctl(SimImage* image, SimCall* call);

// Brings to an end what a killed process has begun, if the image is unsettled. The paths are the shell's.
void simSettle(SimImage* image);

// The name of a kind of call, as faults and traces have it.
const char* simKindName(uint32_t kind);

// Index of the node, or -1.
int simFindNode(const SimImage* image, uint64_t device, uint64_t inode);

// Whether the node is there for its programs: neither removed nor waiting for another MPC configuration.
int simIsPresent(const SimImage* image, uint32_t node);

// The node's name as it stands in its folder, NUL-ended: ovgpu.3, renderD131, card3.
enum { SIM_NODE_NAME = 24 };
void simNodeName(const SimNode* node, char name[SIM_NODE_NAME]);

// What strikes the access of a path: all effects that apply now.
typedef struct SimFileFault {
  int error;  // errno, 0 none
  uint64_t hangMs;
  int isKilled;      // the process is to be killed
  int takes;         // there are paths for simNextToTake
  int64_t cut;       // bytes that stay, -1 all
  const char* text;  // instead of the content, null none
  size_t textLength;
} SimFileFault;

enum SimAim { SIM_AIM_LOOK, SIM_AIM_OPEN, SIM_AIM_MAP, SIM_AIM_MOVE };

// Counts the access against every fault that matches it.
void simFileFaults(SimImage* image, const char* path, enum SimAim aim, SimFileFault* fault);

// The next path that was struck and has to be taken away by the shell; null when there is no more.
const char* simNextToTake(SimImage* image);

// Whether a fault has taken the path away, or a folder that it lies in.
int simIsTaken(const SimImage* image, const char* path);

// Globs of faults: * and ? stay within a folder, ** does not.
int simGlobMatches(const char* pattern, const char* text);

#ifdef __cplusplus
}
#endif

#endif
