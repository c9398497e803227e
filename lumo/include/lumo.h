/*
 * lumo.h - the management library for Orvane GPUs.
 *
 * The interface is plain C and this header stands alone. Every function returns a LumoReturn and
 * writes its result through a pointer; no failure is thrown.
 *
 * Objects.  A handle is an opaque pointer that the library owns. Each lumoLibraryInit gives a handle of
 * the library, to be given back by lumoLibraryShutDown; all other handles are asked for from it or from
 * a device. Asking twice for the same of those gives the same handle. They are valid until the last
 * lumoLibraryShutDown and are never freed by the caller. A handle whose object is gone answers
 * LUMO_RETURN_UNKNOWN_ERROR.
 *
 * Devices.  A device is a physical GPU, an MPC parent (a GPU divided into instances), one of its MPC
 * instances, or, in a virtual machine, a guest device; lumoDeviceGetProperty tells which. Below, "every
 * device" means all of these. What a kind of device lacks is LUMO_RETURN_NOT_SUPPORTED, and so is what
 * its driver does not know. GPU and memory of a divided GPU of the Tor1 family are not seen at all: its
 * parent and instances answer LUMO_RETURN_NOT_SUPPORTED there.
 *
 * Codes.  A question that goes to the driver can fail with any of the codes but those that concern the
 * caller's arguments; the functions below name only what has a meaning of its own.
 *
 * Arguments.  A null handle or output pointer, or a number out of its range, gives
 * LUMO_RETURN_INVALID_ARGUMENT before anything else is looked at. On a failure the caller's output is
 * left as it was, unless a function says otherwise.
 *
 * Texts.  A text goes into a buffer of the caller's, whose size in bytes is `length`. It must have room
 * for the terminating NUL, else LUMO_RETURN_INSUFFICIENT_SIZE; the rest of the buffer is cleared.
 *
 * Lists.  A list takes two calls: one counts, one fills a buffer of so many records. The second reads
 * the list anew and gives LUMO_RETURN_INSUFFICIENT_SIZE, copying nothing, when it has grown past the
 * buffer.
 *
 * Threads.  Every function but the log's configuration may be called from any thread at any time;
 * queries of different devices run at the same time.
 */
#ifndef LUMO_H
#define LUMO_H

#ifdef __cplusplus
extern "C" {
#endif

/** Status of every call. */
typedef enum LumoReturn {
  LUMO_RETURN_SUCCESS = 0,
  LUMO_RETURN_DRIVER_NOT_LOADED = 1,
  LUMO_RETURN_DRIVER_ACCESS_FAILED = 2, /**< the driver could not be reached or answered wrongly */
  LUMO_RETURN_INVALID_ARGUMENT = 3,
  LUMO_RETURN_NOT_SUPPORTED = 4, /**< this device or this kind of device lacks the feature */
  LUMO_RETURN_INSUFFICIENT_PERMISSIONS = 5,
  LUMO_RETURN_INSUFFICIENT_SIZE = 6, /**< the caller's buffer or count is too small */
  LUMO_RETURN_NOT_FOUND = 7,
  LUMO_RETURN_INSUFFICIENT_MEMORY = 8,
  LUMO_RETURN_DRIVER_TOO_OLD = 9,
  LUMO_RETURN_DRIVER_TOO_NEW = 10,
  LUMO_RETURN_BUSY = 11,
  LUMO_RETURN_DEVICE_LOST = 12,
  LUMO_RETURN_UNKNOWN_ERROR = 999
} LumoReturn;

typedef struct LumoLibrary LumoLibrary;
typedef struct LumoSystem LumoSystem;
typedef struct LumoDevice LumoDevice;
typedef struct LumoGpu LumoGpu;
typedef struct LumoMemory LumoMemory;
typedef struct LumoVpu LumoVpu;

/** Lengths of the text fields below, terminators included. */
enum {
  LUMO_PCI_SBDF_SIZE = 32,
  LUMO_UUID_SIZE = 48,
  LUMO_MPC_PROFILE_NAME_SIZE = 64,
  LUMO_LOG_PATH_SIZE = 200
};

/**
 * Static description of a code. A code without a text of its own, LUMO_RETURN_BUSY and
 * LUMO_RETURN_DEVICE_LOST among them, reads "Unknown Error". Never null.
 */
const char *lumoReturnText(LumoReturn code);

/* ---- Log ------------------------------------------------------------------------------------- */

/**
 * Receives one line; `message` ends in a NUL, is `length` bytes long without it and is gone after the
 * call. Lines come from every thread that uses the library, also while it holds its locks: the callback
 * must not call the library.
 */
typedef void (*LumoLogCallback)(const char *message, unsigned length);

/**
 * Where the library's log lines go. A level is 0 nothing, 1 fatal, 2 errors, 3 warnings,
 * 4 information, each with all that is graver.
 */
typedef struct LumoLogConfiguration {
  unsigned consoleLevel;
  unsigned fileLevel;
  char filePath[LUMO_LOG_PATH_SIZE]; /**< empty for no file */
  unsigned maxFileLines;             /**< a file of more lines starts again; 10000 at first */
  unsigned callbackLevel;
  LumoLogCallback callback;
} LumoLogConfiguration;

/**
 * May be called before lumoLibraryInit, and concerns the whole process. Not to be called while another
 * thread uses the library: its lines look at these settings without a lock.
 * @return INVALID_ARGUMENT for a level above 4 or a path without terminator, and nothing is changed;
 *         NOT_SUPPORTED when the file cannot be opened, and there is no file then
 */
LumoReturn lumoLibrarySetLogConfiguration(const LumoLogConfiguration *configuration);
LumoReturn lumoLibraryGetLogConfiguration(LumoLogConfiguration *configuration);
/** Other names of the two functions above. */
LumoReturn lumoLogSetConfiguration(const LumoLogConfiguration *configuration);
LumoReturn lumoLogGetConfiguration(LumoLogConfiguration *configuration);

/* ---- Library --------------------------------------------------------------------------------- */

/**
 * Starts the library, or joins it when it runs already: devices are enumerated once, by the first
 * call. A machine without GPUs is a success with 0 devices, and a GPU that does not answer is left out.
 * A machine whose sysfs gives a GPU a device id that is no number ends the process.
 * @return DRIVER_NOT_LOADED when nodes are there and the driver is not. After a failure the pointer
 *         written to `library` must not be used, and there is nothing to give back.
 */
LumoReturn lumoLibraryInit(LumoLibrary **library);

/** Gives one handle of lumoLibraryInit back; the last one ends the library and every other handle. */
LumoReturn lumoLibraryShutDown(LumoLibrary *library);

/** The library's version, "2.4.0"; 16 bytes hold it. A negative `length` is too small. */
LumoReturn lumoLibraryGetVersion(LumoLibrary *library, char *version, int length);

/** Number of devices, MPC instances included. */
LumoReturn lumoLibraryCountDevice(LumoLibrary *library, unsigned *count);

/** The machine as a whole. */
LumoReturn lumoLibraryInitSystem(LumoLibrary *library, LumoSystem **system);

/**
 * Devices are in ascending order of PCI address; an MPC parent comes before its instances.
 * @return NOT_FOUND for an index at or past the count
 */
LumoReturn lumoLibraryInitDeviceByIndex(LumoLibrary *library, unsigned index, LumoDevice **device);

/**
 * @param uuid the text of lumoDeviceGetUUID. A device without one, or with one that another device has
 *             already, goes by its PCI address here.
 * @return NOT_FOUND when no device goes by that text
 */
LumoReturn lumoLibraryInitDeviceByUuid(LumoLibrary *library, const char *uuid, LumoDevice **device);

/**
 * An MPC parent and its instances share an address, and it stands for the parent.
 * @param sbdf a PCI address such as "0000:41:00.0"
 * @return INVALID_ARGUMENT for a text of another form, NOT_FOUND when no device has the address
 */
LumoReturn lumoLibraryInitDeviceByPciSbdf(LumoLibrary *library, const char *sbdf, LumoDevice **device);

/** Deprecated: handles are released by lumoLibraryShutDown alone, and these only log a warning. */
LumoReturn lumoLibraryFreeSystem(LumoSystem *system);
LumoReturn lumoLibraryFreeDevice(LumoDevice *device);

/* ---- System ---------------------------------------------------------------------------------- */

/** Version of the driver package, such as "3.1.0", also without GPUs; 80 bytes are enough. */
LumoReturn lumoSystemGetDriverVersion(LumoSystem *system, char *version, unsigned length);

/**
 * First argument of a process's command line, folder part included; empty for a kernel thread. Rarely
 * longer than 4096 bytes.
 * @param pid a process id of the caller's namespace
 * @return NOT_FOUND when the process has ended, INSUFFICIENT_PERMISSIONS when it may not be read
 */
LumoReturn lumoSystemGetProcessName(LumoSystem *system, unsigned pid, char *name, unsigned length);

/* ---- Device ---------------------------------------------------------------------------------- */

/** Bits of the property word of lumoDeviceGetProperty. */
enum {
  LUMO_PROPERTY_ROLE_SHIFT = 1,
  LUMO_PROPERTY_ROLE_MASK = 7 << 1,   /**< 0 none, 1 mediated device, 2 guest device */
  LUMO_PROPERTY_MPC_CAPABLE = 1 << 4, /**< MPC mode can be switched */
  LUMO_PROPERTY_MPC_TYPE_SHIFT = 5,
  LUMO_PROPERTY_MPC_TYPE_MASK = 7 << 5, /**< 0 none, 1 parent, 2 instance */
  LUMO_PROPERTY_SABLINK_CAPABLE = 1 << 8 /**< has Sablink ports */
};

typedef struct LumoPciInfo {
  char sbdf[LUMO_PCI_SBDF_SIZE]; /**< as sysfs spells it */
  unsigned domain;               /**< of the PCI address, 32 bits */
  unsigned bus;                  /**< 8 bits */
  unsigned device;               /**< 8 bits */
  unsigned vendorId;
  unsigned deviceId;    /**< its high byte is the architecture number */
  unsigned subsystemId; /**< device in the high, vendor in the low 16 bits */
  float maxSpeed;       /**< GT/s */
  float curSpeed;       /**< GT/s */
  unsigned maxWidth;    /**< lanes */
  unsigned curWidth;    /**< lanes */
  unsigned maxGen;      /**< PCI Express generation */
  unsigned curGen;
} LumoPciInfo;

typedef struct LumoMpcProfile {
  unsigned id;
  unsigned coreCount;
  unsigned long long memory; /**< MiB */
  unsigned instances;        /**< 0 */
  unsigned reserved;         /**< 0 */
  char name[LUMO_MPC_PROFILE_NAME_SIZE];
} LumoMpcProfile;

typedef struct LumoProcessMemUsage {
  unsigned pid;                    /**< of the caller's namespace */
  unsigned kind;                   /**< 0 graphics, 1 compute */
  unsigned long long gpuMemory;    /**< bytes */
  unsigned long long systemMemory; /**< bytes held for the GPU */
  unsigned long long reserved;     /**< 0 */
} LumoProcessMemUsage;

/** The parts of a device, which every device has, also where they answer nothing. */
LumoReturn lumoDeviceInitGpu(LumoDevice *device, LumoGpu **gpu);
LumoReturn lumoDeviceInitMemory(LumoDevice *device, LumoMemory **memory);
LumoReturn lumoDeviceInitVpu(LumoDevice *device, LumoVpu **vpu);

/** Deprecated: handles are released by lumoLibraryShutDown alone, and these only log a warning. */
LumoReturn lumoDeviceFreeGpu(LumoGpu *gpu);
LumoReturn lumoDeviceFreeMemory(LumoMemory *memory);
LumoReturn lumoDeviceFreeVpu(LumoVpu *vpu);

/** Position of the device in the library's order, of every device. */
LumoReturn lumoDeviceGetIndex(LumoDevice *device, unsigned *index);

/**
 * In 8-4-4-4-12 form; LUMO_UUID_SIZE bytes hold it.
 * @return UNKNOWN_ERROR for a device without uuid, as every guest device is
 */
LumoReturn lumoDeviceGetUUID(LumoDevice *device, char *uuid, unsigned length);

/**
 * Model name, of every device; 64 bytes hold it.
 * @return NOT_FOUND when neither the driver nor the library knows the model
 */
LumoReturn lumoDeviceGetName(LumoDevice *device, char *name, unsigned length);

/** What the device is and can do, as the LUMO_PROPERTY bits, of every device. */
LumoReturn lumoDeviceGetProperty(LumoDevice *device, unsigned long long *property);

/** PCI address, ids and link, of every device. @return NOT_SUPPORTED without a known link width */
LumoReturn lumoDeviceGetPciInfo(LumoDevice *device, LumoPciInfo *info);

/** 0 (fastest) to 15; physical GPUs alone. */
LumoReturn lumoDeviceGetPerformanceState(LumoDevice *device, unsigned *state);

/** Processes that hold memory of the GPU, in ascending order of pid, of every device. */
LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice *device, LumoProcessMemUsage *usages, unsigned capacity);

/** MPC instances of an MPC parent, in ascending order of node number; MPC parents alone. */
LumoReturn lumoDeviceCountMpcInstances(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetMpcInstances(LumoDevice *device, LumoDevice **instances, unsigned capacity);

/** The GPU that an MPC instance is a part of; MPC instances alone. */
LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice *device, LumoDevice **parent);

/** Place of an MPC instance in its parent, from 0; MPC instances alone. @return NOT_FOUND when the parent
 *  does not list it */
LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice *device, unsigned *index);

/** Size of an MPC instance; MPC instances alone. */
LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice *device, LumoMpcProfile *profile);

/* ---- GPU ------------------------------------------------------------------------------------- */

/** Busy time in percent, 0 to 100, of every device. */
LumoReturn lumoGpuGetUtilization(LumoGpu *gpu, unsigned *utilization);

/** Whole degrees Celsius, of every device but guests. */
LumoReturn lumoGpuGetTemperature(LumoGpu *gpu, int *temperature);

/* ---- Memory ---------------------------------------------------------------------------------- */

/** Size of the memory in bytes, of every device. */
LumoReturn lumoMemoryGetTotal(LumoMemory *memory, unsigned long long *total);

/** Memory in use in bytes, of every device. */
LumoReturn lumoMemoryGetUsed(LumoMemory *memory, unsigned long long *used);

/** Inline ECC now and after the next reset, 0 off and 1 on; physical GPUs of the Tor1 family alone. */
LumoReturn lumoMemoryGetEccMode(LumoMemory *memory, unsigned *current, unsigned *pending);

#ifdef __cplusplus
}
#endif

#endif
