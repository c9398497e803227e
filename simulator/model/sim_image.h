// The one block of memory that holds a simulated host: device table, values, faults and all that
// changes. It has no pointers, so that a file of it can be mapped by any number of processes at once.
//
// Parts that change after the block was built are changed with atomic operations: numbers of cells
// that a setter writes, positions in a sequence of values, hit counts of faults, call counts.
#ifndef SIM_IMAGE_H
#define SIM_IMAGE_H

#include "sim_types.h"

#ifdef __cplusplus
extern "C" {
#endif

enum {
  SIM_IMAGE_MAGIC = 0x4d495356,
  SIM_IMAGE_LAYOUT = 4,
};

enum SimValue {
#define SIM_VALUE(id, name, type, keys) SIM_##id,
#include "sim_values.def"
#undef SIM_VALUE
  SIM_VALUE_COUNT
};

// A key is up to three selecting fields of the request and a row, 16 bits each.
#define SIM_KEY(a, b, c, row) \
  ((uint64_t)(a) | (uint64_t)(b) << 16 | (uint64_t)(c) << 32 | (uint64_t)(row) << 48)

// Stands for any key: a value that is the same, or refused, whatever is asked for.
#define SIM_ANY_KEY (~(uint64_t)0)

enum SimCellKind {
  SIM_CELL_NUMBER,  // number
  SIM_CELL_NA,      // all bits set, to the field's width
  SIM_CELL_BLOB,    // text, bytes or an array of u32 at `offset`, `length` bytes
  SIM_CELL_STATUS,  // the call is refused with this driver status
  SIM_CELL_ERRNO,   // the call fails with this errno
  SIM_CELL_STEPS,   // one value after the other: `length` steps from cell `offset` of the step table
  SIM_CELL_NONE,    // no such value yet: room for one that a call may make
};

typedef struct SimCell {
  uint64_t key;
  uint16_t value;     // enum SimValue
  uint8_t kind;       // enum SimCellKind
  uint8_t cycle;      // steps begin again; else the last one stays
  uint32_t position;  // steps that were taken
  uint64_t number;
  uint64_t initial;  // the number and kind that a reset brings back
  uint32_t offset;
  uint32_t length;
  uint8_t initialKind;  // enum SimCellKind
  uint8_t changed;      // a call has set it
  uint8_t reserved[6];
} SimCell;

enum SimNodeKind {
  SIM_NODE_PLAIN = 1,
  SIM_NODE_PARENT = 2,
  SIM_NODE_INSTANCE = 4,
  SIM_NODE_RENDER = 8,
  SIM_NODE_CARD = 16,
};

// Forms of commands to the firmware, at most.
enum { SIM_SMC_FORMS = 24 };

// A device node. `cells` are sorted by value and key; a render node has those of its device.
typedef struct SimNode {
  uint32_t kind;
  uint32_t number;   // N of ovgpu.N, renderDN, cardN
  uint32_t owner;    // index of the device's misc node
  uint32_t gpu;      // index in the GPU table
  uint32_t gone;     // the device was removed (of a misc node)
  uint32_t present;  // there is such a node now; those of other MPC configurations wait
  uint32_t cellFirst;
  uint32_t cellCount;
  uint64_t device;  // st_dev and st_ino of the file that stands for the node
  uint64_t inode;
  uint32_t attempts[SIM_SMC_FORMS];  // those of each command that found the firmware busy
} SimNode;

// What `SimGpu.mpcState` is when it is not the id of a configuration.
enum {
  SIM_MPC_UNSET = 0xffff,  // in MPC mode without a configuration
  SIM_MPC_OFF = 0x10000,
};

// A PCI function; its place is the number of its folder in procfs.
typedef struct SimGpu {
  uint32_t node;      // its own misc node
  uint32_t mpcState;  // id of the configuration that is set, or one of the above
  uint32_t mpcNext;   // the same, but while one is being set: that one
  uint32_t family;    // number of the chip family
} SimGpu;

// What a node of a GPU is in one state of the MPC mode. A node that has no face in a state is not there.
typedef struct SimFace {
  uint32_t gpu;
  uint32_t state;  // as SimGpu.mpcState
  uint32_t node;
  uint32_t kind;  // enum SimNodeKind
  uint32_t cellFirst;
  uint32_t cellCount;
} SimFace;

// A path that is there as long as its node is.
typedef struct SimNodePath {
  uint32_t node;
  uint32_t path;  // offset of the NUL-ended path
} SimNodePath;

enum { SIM_SESSION_COUNT = 64 };

enum SimSessionKind { SIM_SESSION_PCIE, SIM_SESSION_SABLINK };

// A measurement of a bus. Every read of it is an interval further.
typedef struct SimSession {
  uint32_t id;  // 0: not in use
  uint32_t kind;
  uint32_t node;
  uint32_t link;
  uint32_t interval;  // ms
  uint32_t samples;
} SimSession;

// An entry of the driver's interface list.
typedef struct SimListed {
  uint32_t name;
  uint16_t minVersion;
  uint16_t maxVersion;
} SimListed;

enum SimFaultTarget {
  SIM_FAULT_IOCTL,
  SIM_FAULT_FILE,  // every access of a path
  SIM_FAULT_OPEN,  // opening it alone
  SIM_FAULT_MAP,   // mapping a node's shared buffer
  SIM_FAULT_MOVE,  // moving the file of a node that comes or goes
};

// How far a path is that a fault takes away. It is hidden from the first step on.
enum SimTaking { SIM_TAKE_NOT_YET, SIM_TAKE_DUE, SIM_TAKE_DONE };

enum SimFaultEffect {
  SIM_EFFECT_ERRNO,
  SIM_EFFECT_STATUS,
  SIM_EFFECT_SHORT,  // the first `number` bytes of the reply alone
  SIM_EFFECT_ONES,   // a reply of ones
  SIM_EFFECT_COUNT,  // the count of the reply is `number`
  SIM_EFFECT_HANG,   // `number` milliseconds before the answer
  SIM_EFFECT_GONE,   // the device is removed
  SIM_EFFECT_CUT,    // the file ends after `number` bytes
  SIM_EFFECT_TEXT,   // the file holds the text instead
  SIM_EFFECT_KILL,   // the process is killed before the access does anything
  SIM_EFFECT_TAKE,   // the path of `text` is taken away; `number` is an enum SimTaking
};

enum SimCallKind {
  SIM_CALL_PROBE,
  SIM_CALL_SCAN,
  SIM_CALL_LIST,
  SIM_CALL_RECORD,
  SIM_CALL_SMC,
  SIM_CALL_MEMORY,
  SIM_CALL_UNKNOWN,
  SIM_CALL_ANY = 0xff,
};

typedef struct SimFault {
  uint8_t target;    // enum SimFaultTarget
  uint8_t effect;    // enum SimFaultEffect
  uint8_t callKind;  // enum SimCallKind
  uint8_t anyInterface;
  uint8_t anyVersion;
  uint8_t anyRequest;
  uint16_t version;
  uint32_t interfaceName;
  uint32_t request;
  uint32_t pattern;  // offset of the NUL-ended glob of path or node name; 0 any
  uint32_t text;     // offset of the text of SIM_EFFECT_TEXT, of the path of SIM_EFFECT_TAKE
  uint32_t textLength;
  uint64_t first;  // the matching accesses that it strikes, counted from 1
  uint64_t last;
  uint64_t number;
  uint64_t hits;  // matching accesses so far
} SimFault;

enum SimProtocol {
  SIM_PROTOCOL_0,
  SIM_PROTOCOL_1,
  SIM_PROTOCOL_NONE,  // a driver from before the probes
};

enum { SIM_UNEXPECTED_COUNT = 64 };

// What the driver was asked for and did not offer: one row for all calls that are the same.
typedef struct SimUnexpected {
  uint64_t hits;  // 0: not in use
  uint32_t node;
  uint32_t request;
  uint32_t interfaceName;
  uint16_t version;
  uint8_t kind;  // enum SimCallKind
  uint8_t hasInterface;
  uint8_t command;
  uint8_t reserved[7];
} SimUnexpected;

typedef struct SimTable {
  uint32_t offset;
  uint32_t count;
} SimTable;

typedef struct SimImage {
  uint32_t magic;
  uint32_t layout;
  uint64_t size;
  uint64_t hostHash;  // of the description it was built from
  uint32_t protocol;  // enum SimProtocol
  uint16_t currentMajor;
  uint16_t currentMinor;
  uint32_t renderProtocol;   // SIM_PROTOCOL_0 or SIM_PROTOCOL_NONE
  uint32_t loaded;           // the driver is there; if not, its nodes open for nobody
  uint32_t fixedTime;        // the wall clock stands still
  uint32_t lastSession;      // id of the session that was started last
  uint32_t lastBuffer;       // number of the shared buffer that was made last
  uint32_t busyAttempts;     // so many attempts of a command find the firmware busy
  uint32_t busyAgain;        // every time, and not only at first
  uint32_t unsettled;        // nodes come and go; whoever finds it so brings it to an end
  int64_t time;              // seconds since the epoch
  uint64_t calls;            // ioctls so far
  uint64_t unexpected;       // those that the driver did not offer
  SimTable nodes;            // SimNode
  SimTable gpus;             // SimGpu
  SimTable faces;            // SimFace
  SimTable nodePaths;        // SimNodePath
  SimTable sessions;         // SimSession
  SimTable cells;            // SimCell
  SimTable steps;            // SimCell
  SimTable listed;           // SimListed, misc
  SimTable renderListed;     // SimListed
  SimTable faults;           // SimFault
  SimTable removed;          // u32 offsets of paths that are hidden although the machine has them
  SimTable unexpectedCalls;  // SimUnexpected
} SimImage;

#define SIM_AT(image, type, table) ((type*)(void*)((char*)(uintptr_t)(image) + (image)->table.offset))

#ifdef __cplusplus
}
#endif

#endif
