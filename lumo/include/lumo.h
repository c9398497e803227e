/*
 * lumo.h - the management library for Orvane GPUs.
 *
 * The interface is plain C and this header stands alone. Every function returns a LumoReturn and
 * writes its result through a pointer; nothing throws.
 *
 * Objects.  A handle is an opaque pointer that the library owns. lumoLibraryInit gives the library's
 * handle; all others are asked for from it or from a device. Asking twice for the same object gives
 * the same handle. A handle is valid until the last lumoLibraryShutDown and is never freed by the
 * caller. A handle whose object is gone answers LUMO_RETURN_UNKNOWN_ERROR.
 *
 * Arguments.  A null handle or output pointer, or a number out of its range, gives
 * LUMO_RETURN_INVALID_ARGUMENT before anything else is looked at. On a failure the caller's output is
 * left as it was, unless a function says otherwise.
 *
 * Texts.  A text goes into a buffer of the caller's that must have room for the terminating NUL, else
 * LUMO_RETURN_INSUFFICIENT_SIZE; the rest of the buffer is cleared.
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

/** Receives one line; `message` ends in a NUL and is `length` bytes long without it. */
typedef void (*LumoLogCallback)(const char *message, unsigned length);

/**
 * Where the library's log lines go. A level is 0 nothing, 1 fatal, 2 errors, 3 warnings,
 * 4 information, each with all that is graver.
 */
typedef struct LumoLogConfiguration {
  unsigned consoleLevel;
  unsigned fileLevel;
  char filePath[LUMO_LOG_PATH_SIZE]; /**< empty for no file */
  unsigned maxFileLines;             /**< a file longer than this starts again; 10000 at first */
  unsigned callbackLevel;
  LumoLogCallback callback;
} LumoLogConfiguration;

/**
 * May be called before lumoLibraryInit, and concerns the whole process. Not to be called while another
 * thread uses the library: its lines look at these settings without a lock.
 * @return INVALID_ARGUMENT for a level above 4 or a path without terminator, NOT_SUPPORTED when the
 *         file cannot be opened
 */
LumoReturn lumoLibrarySetLogConfiguration(const LumoLogConfiguration *configuration);
LumoReturn lumoLibraryGetLogConfiguration(LumoLogConfiguration *configuration);
/** Other names of the two functions above. */
LumoReturn lumoLogSetConfiguration(const LumoLogConfiguration *configuration);
LumoReturn lumoLogGetConfiguration(LumoLogConfiguration *configuration);

/* ---- Library --------------------------------------------------------------------------------- */

/**
 * Starts the library, or joins it when it runs already: devices are enumerated once, by the first
 * call. A machine without GPUs is a success with 0 devices.
 * @return DRIVER_NOT_LOADED when nodes are there and the driver is not. After a failure the pointer
 *         written to `library` must not be used.
 */
LumoReturn lumoLibraryInit(LumoLibrary **library);

/** Gives one handle of lumoLibraryInit back; the last one ends the library and every other handle. */
LumoReturn lumoLibraryShutDown(LumoLibrary *library);

/** The library's version. @param length size of `version` in bytes */
LumoReturn lumoLibraryGetVersion(LumoLibrary *library, char *version, int length);

/** Number of devices, MPC instances included. */
LumoReturn lumoLibraryCountDevice(LumoLibrary *library, unsigned *count);

LumoReturn lumoLibraryInitSystem(LumoLibrary *library, LumoSystem **system);

/** @return NOT_FOUND for an index at or past the count. Devices are in ascending order of address. */
LumoReturn lumoLibraryInitDeviceByIndex(LumoLibrary *library, unsigned index, LumoDevice **device);

/** @param uuid the text of lumoDeviceGetUUID */
LumoReturn lumoLibraryInitDeviceByUuid(LumoLibrary *library, const char *uuid, LumoDevice **device);

/** @param sbdf a PCI address such as "0000:41:00.0" */
LumoReturn lumoLibraryInitDeviceByPciSbdf(LumoLibrary *library, const char *sbdf, LumoDevice **device);

/** Deprecated: handles are released by lumoLibraryShutDown alone, and these only log a warning. */
LumoReturn lumoLibraryFreeSystem(LumoSystem *system);
LumoReturn lumoLibraryFreeDevice(LumoDevice *device);

/* ---- System ---------------------------------------------------------------------------------- */

/** Version of the driver package. @param length size of `version` in bytes */
LumoReturn lumoSystemGetDriverVersion(LumoSystem *system, char *version, unsigned length);

/**
 * First argument of a process's command line, folder part included; empty for a kernel thread.
 * @return NOT_FOUND when the process has ended, INSUFFICIENT_PERMISSIONS when it may not be read
 */
LumoReturn lumoSystemGetProcessName(LumoSystem *system, unsigned pid, char *name, unsigned length);

/* ---- Device ---------------------------------------------------------------------------------- */

/** Bits of the property word of lumoDeviceGetProperty. */
enum {
  LUMO_PROPERTY_VIRTUALIZATION_CAPABLE = 1 << 0,
  LUMO_PROPERTY_ROLE_SHIFT = 1,
  LUMO_PROPERTY_ROLE_MASK = 7 << 1, /**< 0 none, 1 mediated device, 2 guest device */
  LUMO_PROPERTY_MPC_CAPABLE = 1 << 4,
  LUMO_PROPERTY_MPC_TYPE_SHIFT = 5,
  LUMO_PROPERTY_MPC_TYPE_MASK = 7 << 5, /**< 0 none, 1 parent, 2 instance */
  LUMO_PROPERTY_SABLINK_CAPABLE = 1 << 8
};

typedef struct LumoPciInfo {
  char sbdf[LUMO_PCI_SBDF_SIZE]; /**< as sysfs spells it */
  unsigned domain;
  unsigned bus;
  unsigned device;
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
  unsigned reserved;
  char name[LUMO_MPC_PROFILE_NAME_SIZE];
} LumoMpcProfile;

typedef struct LumoProcessMemUsage {
  unsigned pid;                    /**< of the caller's namespace */
  unsigned kind;                   /**< 0 graphics, 1 compute */
  unsigned long long gpuMemory;    /**< bytes */
  unsigned long long systemMemory; /**< bytes held for the GPU */
  unsigned long long reserved;
} LumoProcessMemUsage;

LumoReturn lumoDeviceInitGpu(LumoDevice *device, LumoGpu **gpu);
LumoReturn lumoDeviceInitMemory(LumoDevice *device, LumoMemory **memory);
LumoReturn lumoDeviceInitVpu(LumoDevice *device, LumoVpu **vpu);

/** Deprecated: handles are released by lumoLibraryShutDown alone, and these only log a warning. */
LumoReturn lumoDeviceFreeGpu(LumoGpu *gpu);
LumoReturn lumoDeviceFreeMemory(LumoMemory *memory);
LumoReturn lumoDeviceFreeVpu(LumoVpu *vpu);

/** Position of the device in the library's order. @return NOT_SUPPORTED for a mediated device */
LumoReturn lumoDeviceGetIndex(LumoDevice *device, unsigned *index);

/** 8-4-4-4-12 form. @return UNKNOWN_ERROR for a device without uuid, as every guest device is */
LumoReturn lumoDeviceGetUUID(LumoDevice *device, char *uuid, unsigned length);

/** Model name. @return NOT_SUPPORTED for a mediated device */
LumoReturn lumoDeviceGetName(LumoDevice *device, char *name, unsigned length);

/** What the device is and can do, as the LUMO_PROPERTY bits. */
LumoReturn lumoDeviceGetProperty(LumoDevice *device, unsigned long long *property);

/** PCI address, ids and link. @return NOT_SUPPORTED for a mediated device or without a known link width */
LumoReturn lumoDeviceGetPciInfo(LumoDevice *device, LumoPciInfo *info);

/** 0 (fastest) to 15. @return NOT_SUPPORTED for every device but a physical one */
LumoReturn lumoDeviceGetPerformanceState(LumoDevice *device, unsigned *state);

/** Processes that hold GPU memory, in ascending order of pid. */
LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice *device, LumoProcessMemUsage *usages, unsigned capacity);

/** MPC instances of an MPC parent, in ascending order of node number. @return NOT_SUPPORTED for others */
LumoReturn lumoDeviceCountMpcInstances(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetMpcInstances(LumoDevice *device, LumoDevice **instances, unsigned capacity);

/** The three below answer for an MPC instance alone, else NOT_SUPPORTED. */
LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice *device, LumoDevice **parent);
LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice *device, unsigned *index);
LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice *device, LumoMpcProfile *profile);

/* ---- GPU ------------------------------------------------------------------------------------- */

/** Busy time in percent, 0 to 100. */
LumoReturn lumoGpuGetUtilization(LumoGpu *gpu, unsigned *utilization);

/** Whole degrees Celsius. */
LumoReturn lumoGpuGetTemperature(LumoGpu *gpu, int *temperature);

/* ---- Memory ---------------------------------------------------------------------------------- */

/** Bytes. */
LumoReturn lumoMemoryGetTotal(LumoMemory *memory, unsigned long long *total);
LumoReturn lumoMemoryGetUsed(LumoMemory *memory, unsigned long long *used);

/** Inline ECC now and after the next reset, 0 off and 1 on. */
LumoReturn lumoMemoryGetEccMode(LumoMemory *memory, unsigned *current, unsigned *pending);

#ifdef __cplusplus
}
#endif

#endif
