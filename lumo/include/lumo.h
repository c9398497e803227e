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
 * LUMO_RETURN_UNKNOWN_ERROR. Records and buffers are the caller's; the library keeps no pointer to them,
 * but for events and performance samples, which it makes itself.
 *
 * Devices.  A device is a physical GPU, an MPC parent (a GPU divided into instances), one of its MPC
 * instances, a mediated device (a vGPU seen from its host) or, in a virtual machine, a guest device;
 * lumoDeviceGetProperty tells which. Below, "every device" means all of these but mediated ones, which
 * answer only where they are named. What a kind of device lacks is LUMO_RETURN_NOT_SUPPORTED, and so is
 * what its driver does not know. A divided GPU of the Tor1 family lacks GPU, memory, VPU, fans, displays,
 * slot, bus counters, peers, links and vGPUs in its parent and instances, also where "every device" answers.
 *
 * Codes.  A question that goes to the driver can fail with any of the codes but those that concern the
 * caller's arguments; the functions below name only what has a meaning of its own.
 *
 * Arguments.  A null handle or output pointer, or a number out of its range, gives
 * LUMO_RETURN_INVALID_ARGUMENT before anything else is looked at. On a failure the caller's output is
 * left as it was, unless a function says otherwise.
 *
 * Texts.  A text goes into a buffer of the caller's, whose size in bytes is `length`. It must have room
 * for the terminating NUL, else LUMO_RETURN_INSUFFICIENT_SIZE; the rest of the buffer is cleared. A text
 * in a record always ends in a NUL.
 *
 * Lists.  A list takes two calls: one counts, one fills a buffer of so many records. The second reads
 * the list anew and gives LUMO_RETURN_INSUFFICIENT_SIZE, copying nothing, when it has grown past the
 * buffer. Records past the end of the list are cleared.
 *
 * Threads.  Every function but the log's configuration may be called from any thread at any time;
 * queries of different devices run at the same time. Only four must run alone: lumoDeviceReset,
 * lumoDeviceSetMpcMode, lumoDeviceSetMpcConfiguration and lumoMemorySetEccMode close every other device
 * for as long as they work, and the driver does not let them begin while one is in use.
 * lumoLibrarySetMpcConfigurationInBatch must run alone too, and ends every handle but the library's.
 *
 * Versions.  A program that was compiled against a header of this major version runs with every later
 * library of it. Functions are added and never changed or removed; a record keeps its size and fields,
 * and what grows gets a new record and a new function; enumerations and property words can get further
 * values, so take an unknown one as such.
 */
#ifndef LUMO_H
#define LUMO_H

#ifdef __cplusplus
extern "C" {
#endif

/** Version of this header; lumoLibraryGetVersion tells the library's. */
#define LUMO_VERSION_MAJOR 2
#define LUMO_VERSION_MINOR 4
#define LUMO_VERSION_PATCH 0
/** As one number, for comparisons: 2.4.0 is 20400. */
#define LUMO_VERSION (LUMO_VERSION_MAJOR * 10000 + LUMO_VERSION_MINOR * 100 + LUMO_VERSION_PATCH)

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
typedef struct LumoEvent LumoEvent;

/** Lengths of the text fields below, terminators included, and of the lists in records. */
enum {
  LUMO_PCI_SBDF_SIZE = 32,
  LUMO_UUID_SIZE = 48,
  LUMO_MPC_PROFILE_NAME_SIZE = 64,
  LUMO_MPC_CONFIGURATION_NAME_SIZE = 60,
  LUMO_MPC_MAX_INSTANCES = 32,
  LUMO_VIRT_TYPE_ID_SIZE = 16,
  LUMO_VIRT_TYPE_TEXT_SIZE = 32,
  LUMO_PCI_SLOT_NAME_SIZE = 64,
  LUMO_SABLINK_PATH_SIZE = 24,
  LUMO_SABLINK_LANES = 4,
  LUMO_PFM_MAX_METRICS = 98,
  LUMO_XID_ADDITIONAL_SIZE = 128,
  LUMO_LOG_PATH_SIZE = 200
};

/** A number of a record that its device does not know, where the field says so. */
#define LUMO_NOT_AVAILABLE 0xFFFFFFFFU

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

/** Gives one handle of lumoLibraryInit back, once; the last one ends the library and every other handle. */
LumoReturn lumoLibraryShutDown(LumoLibrary *library);

/** The library's version, "2.4.0"; 16 bytes hold it. A negative `length` is too small. */
LumoReturn lumoLibraryGetVersion(LumoLibrary *library, char *version, int length);

/** Number of devices: MPC instances are among them, mediated devices are not. */
LumoReturn lumoLibraryCountDevice(LumoLibrary *library, unsigned *count);

/** The machine as a whole. */
LumoReturn lumoLibraryInitSystem(LumoLibrary *library, LumoSystem **system);

/**
 * Devices are in ascending order of PCI address, and those of one address in that of lumoDeviceGetIntId.
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

/**
 * Divides several GPUs, each as one of its supported configurations says. A GPU that is not an MPC parent
 * yet becomes one. Every change makes the driver's devices anew, so that afterwards every handle but the
 * library's is freed and must not be used, whatever the result; devices are enumerated again by the next
 * lumoLibraryInit.
 * @param count      number of GPUs; 0 does nothing
 * @param configIds  one configuration id per device
 * @return NOT_SUPPORTED, with nothing changed and all handles valid, when a device cannot be divided.
 *         After any later failure the GPUs handled so far leave MPC mode again, as far as the driver
 *         lets them.
 */
LumoReturn lumoLibrarySetMpcConfigurationInBatch(LumoLibrary *library, unsigned count, LumoDevice **devices,
                                                 unsigned *configIds);

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

/* ---- Device: what it is ---------------------------------------------------------------------- */

/** Kinds of device, as lumoDeviceGetType tells them. */
enum {
  LUMO_DEVICE_UNKNOWN = 0,
  LUMO_DEVICE_PHYSICAL = 1,
  LUMO_DEVICE_MPC_PARENT = 2,
  LUMO_DEVICE_MPC_INSTANCE = 3,
  LUMO_DEVICE_MEDIATED = 4,
  LUMO_DEVICE_GUEST = 5
};

/** Bits of the property word of lumoDeviceGetProperty. */
enum {
  LUMO_PROPERTY_VIRTUALIZATION_CAPABLE = 1, /**< can carry vGPUs of at least one type */
  LUMO_PROPERTY_ROLE_SHIFT = 1,
  LUMO_PROPERTY_ROLE_MASK = 7 << 1,   /**< 0 none, 1 mediated device, 2 guest device */
  LUMO_PROPERTY_MPC_CAPABLE = 1 << 4, /**< MPC mode can be switched */
  LUMO_PROPERTY_MPC_TYPE_SHIFT = 5,
  LUMO_PROPERTY_MPC_TYPE_MASK = 7 << 5,  /**< 0 none, 1 parent, 2 instance */
  LUMO_PROPERTY_SABLINK_CAPABLE = 1 << 8 /**< has Sablink ports */
};

/** Results of lumoDeviceGetBrand. */
enum { LUMO_BRAND_UNKNOWN = 0, LUMO_BRAND_OVT = 1 };

/** The parts of a device, which every device has, mediated ones too, also where they answer nothing. */
LumoReturn lumoDeviceInitGpu(LumoDevice *device, LumoGpu **gpu);
LumoReturn lumoDeviceInitMemory(LumoDevice *device, LumoMemory **memory);
LumoReturn lumoDeviceInitVpu(LumoDevice *device, LumoVpu **vpu);

/** Deprecated: handles are released by lumoLibraryShutDown alone, and these only log a warning. */
LumoReturn lumoDeviceFreeGpu(LumoGpu *gpu);
LumoReturn lumoDeviceFreeMemory(LumoMemory *memory);
LumoReturn lumoDeviceFreeVpu(LumoVpu *vpu);
LumoReturn lumoDeviceFreeVirtDevice(LumoDevice *device);

/** Position of the device in the library's order, of every device. */
LumoReturn lumoDeviceGetIndex(LumoDevice *device, unsigned *index);

/** One of LUMO_DEVICE_..., of every device and mediated ones. */
LumoReturn lumoDeviceGetType(LumoDevice *device, unsigned *type);

/**
 * The driver's own number of the device: N of its node "ovgpu.N", for a mediated device its number on its
 * GPU. Of every device and mediated ones.
 */
LumoReturn lumoDeviceGetIntId(LumoDevice *device, unsigned long long *intId);

/**
 * In 8-4-4-4-12 form; LUMO_UUID_SIZE bytes hold it. Of every device and mediated ones.
 * @return UNKNOWN_ERROR for a device without uuid, as every guest device is
 */
LumoReturn lumoDeviceGetUUID(LumoDevice *device, char *uuid, unsigned length);

/**
 * Model name, of every device; 64 bytes hold it.
 * @return NOT_FOUND when neither the driver nor the library knows the model
 */
LumoReturn lumoDeviceGetName(LumoDevice *device, char *name, unsigned length);

/** One of LUMO_BRAND_..., of every device but guests. */
LumoReturn lumoDeviceGetBrand(LumoDevice *device, unsigned *brand);

/** Serial number of the board, of every device but guests; 64 bytes hold it. */
LumoReturn lumoDeviceGetSerialNumber(LumoDevice *device, char *serial, unsigned length);

/** Versions of the board's firmware, such as "1.2.3", of every device but guests; 32 bytes hold one. */
LumoReturn lumoDeviceGetOvBiosVersion(LumoDevice *device, char *version, unsigned length);
LumoReturn lumoDeviceGetRtosVersion(LumoDevice *device, char *version, unsigned length);

/** What the device is and can do, as the LUMO_PROPERTY bits, of every device and mediated ones. */
LumoReturn lumoDeviceGetProperty(LumoDevice *device, unsigned long long *property);

/** Version of the instruction set, such as 3 and 1, of every device. */
LumoReturn lumoDeviceGetComputeCapability(LumoDevice *device, unsigned *major, unsigned *minor);

/** Number of GPU cores, which is also the width of a core mask; of every device. */
LumoReturn lumoDeviceGetCoreCount(LumoDevice *device, unsigned *count);

/** Mask of the GPU cores that are usable, of every device. */
LumoReturn lumoDeviceGetUsableCores(LumoDevice *device, unsigned long long *mask);

/** Shader units of each GPU core, 0 for an absent one; physical GPUs of the Tor1 family alone. */
LumoReturn lumoDeviceCountCoreUnits(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetCoreUnits(LumoDevice *device, unsigned *units, unsigned capacity);

/** Nodes, such as "/dev/ovgpu.0", in 64 bytes, of every device; MPC parents have no card and render node. */
LumoReturn lumoDeviceGetMiscPath(LumoDevice *device, char *path, unsigned length);
LumoReturn lumoDeviceGetCardPath(LumoDevice *device, char *path, unsigned length);
LumoReturn lumoDeviceGetRenderPath(LumoDevice *device, char *path, unsigned length);
LumoReturn lumoDeviceGetIonPath(LumoDevice *device, char *path, unsigned length);

/* ---- Device: on its bus ---------------------------------------------------------------------- */

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

/** The slot that a board sits in. */
typedef struct LumoPciSlotInfo {
  unsigned number;
  char name[LUMO_PCI_SLOT_NAME_SIZE];
} LumoPciSlotInfo;

/** Traffic of a measurement. A number that the driver does not take is LUMO_NOT_AVAILABLE. */
typedef struct LumoPcieBandWidth {
  unsigned long long rxBytes; /**< received since the start */
  unsigned long long txBytes; /**< sent since the start */
  unsigned long long rxRate;  /**< bytes/s over the last interval */
  unsigned long long txRate;
  unsigned state; /**< 1 running, 0 stopped by the driver */
  unsigned rxMin; /**< MB/s since the start, as all that follow */
  unsigned rxMean;
  unsigned rxMax;
  unsigned txMin;
  unsigned txMean;
  unsigned txMax;
  unsigned samples; /**< intervals since the start */
} LumoPcieBandWidth;

/** PCI address, ids and link, of every device. @return NOT_SUPPORTED without a known link width */
LumoReturn lumoDeviceGetPciInfo(LumoDevice *device, LumoPciInfo *info);

/** Of every device. */
LumoReturn lumoDeviceGetPcieSlotInfo(LumoDevice *device, LumoPciSlotInfo *slot);

/** Packets sent again since boot, of every device. */
LumoReturn lumoDeviceGetPcieReplayCounter(LumoDevice *device, unsigned long long *count);

/** The third memory window, in bytes, of every device. */
LumoReturn lumoDeviceGetPcieBar2MemoryInfo(LumoDevice *device, unsigned long long *total,
                                           unsigned long long *used, unsigned long long *free);

/**
 * Measures the traffic on the bus: start, read as often as wanted, stop. Not on MPC instances and guests,
 * nor on the Wold family.
 * @param intervalMs how often the driver takes its counters
 * @param session    number of the measurement
 */
LumoReturn lumoDeviceStartPciePerf(LumoDevice *device, unsigned intervalMs, unsigned *session);
LumoReturn lumoDeviceGetPcieBandWidth(LumoDevice *device, unsigned session, LumoPcieBandWidth *data);
LumoReturn lumoDeviceStopPciePerf(LumoDevice *device, unsigned session);

/* ---- Device: fans, power, display ------------------------------------------------------------ */

/** A display connector at its largest. */
typedef struct LumoDispIntfSpec {
  unsigned type;       /**< 0 DP, 1 EDP, 2 VGA, 3 HDMI, 4 LVDS, 5 other */
  unsigned hRes;       /**< pixels, 0 when unknown */
  unsigned vRes;       /**< pixels, 0 when unknown */
  unsigned pixelClock; /**< units of 100 kHz, 0 when unknown */
  float refreshRate;   /**< hertz, an estimate; 0 when there is none */
} LumoDispIntfSpec;

/** Fans of the board, of every device but guests. */
LumoReturn lumoDeviceCountFan(LumoDevice *device, unsigned *count);
/**
 * In percent of the fan's maximum, and in revolutions per minute.
 * @return INVALID_ARGUMENT for an index at or past the count, NOT_SUPPORTED without fans
 */
LumoReturn lumoDeviceGetFanSpeed(LumoDevice *device, unsigned index, unsigned *percent);
LumoReturn lumoDeviceGetFanRpm(LumoDevice *device, unsigned index, unsigned *rpm);

/** Milliwatts that the board draws, of every device. */
LumoReturn lumoDeviceGetPowerUsage(LumoDevice *device, unsigned *milliwatts);

/**
 * Milliwatts: what the board starts with, what holds now, what was asked for, and the least and the most
 * that can be set. From the Tor1 family on.
 */
LumoReturn lumoDeviceGetDefaultPowerLimit(LumoDevice *device, unsigned *milliwatts);
LumoReturn lumoDeviceGetEnforcedPowerLimit(LumoDevice *device, unsigned *milliwatts);
LumoReturn lumoDeviceGetPowerLimit(LumoDevice *device, unsigned *milliwatts);
LumoReturn lumoDeviceGetPowerLimitConstraints(LumoDevice *device, unsigned *minimum, unsigned *maximum);

/**
 * Physical GPUs alone, from the Tor1 family on.
 * @param milliwatts rounded to whole watts before it is compared and set
 * @param persistent 1 to keep the limit over a boot, else 0
 * @return INVALID_ARGUMENT outside of the constraints as well
 */
LumoReturn lumoDeviceSetPowerLimitWithPersistentOption(LumoDevice *device, unsigned milliwatts,
                                                       unsigned persistent);

/** 0 (fastest) to 15; physical GPUs alone. */
LumoReturn lumoDeviceGetPerformanceState(LumoDevice *device, unsigned *state);
LumoReturn lumoDeviceSetPerformanceState(LumoDevice *device, unsigned state);

/** Display connectors, of physical GPUs and MPC parents. */
LumoReturn lumoDeviceCountDisplayInterface(LumoDevice *device, unsigned *count);
/** @return INVALID_ARGUMENT for an index at or past the count */
LumoReturn lumoDeviceGetDisplayInterfaceSpec(LumoDevice *device, unsigned index, LumoDispIntfSpec *spec);

/** Resets a physical GPU. Every process must have left it. */
LumoReturn lumoDeviceReset(LumoDevice *device);

/** Empties the driver's queues of fault messages of a physical GPU. */
LumoReturn lumoDeviceResetEventMessages(LumoDevice *device);

/* ---- Device: among the others ---------------------------------------------------------------- */

/** How far apart two PCI functions are. */
enum {
  LUMO_TOPOLOGY_SAME = -1,
  LUMO_TOPOLOGY_INTERNAL = 0,         /**< the two halves of one card */
  LUMO_TOPOLOGY_SINGLE_BRIDGE = 1,    /**< at most one switch or bridge between them */
  LUMO_TOPOLOGY_MULTIPLE_BRIDGES = 2, /**< several, but no host bridge */
  LUMO_TOPOLOGY_HOST_BRIDGE = 3,
  LUMO_TOPOLOGY_NODE = 4,  /**< different root complexes of one NUMA node */
  LUMO_TOPOLOGY_SYSTEM = 5 /**< across NUMA nodes */
};

/** Results of lumoDeviceGetP2PStatus; others are unknown. */
enum { LUMO_P2P_OK = 0, LUMO_P2P_CHIPSET_NOT_SUPPORTED = 1, LUMO_P2P_GPU_NOT_SUPPORTED = 2 };

/** A LUMO_TOPOLOGY_... between two devices, of every device and mediated ones. */
LumoReturn lumoDeviceGetTopologyLevel(LumoDevice *device, LumoDevice *other, int *level);

/**
 * The same between any two GPUs or network adapters, by PCI addresses such as "0000:41:00.0"; `device`
 * may be any device.
 * @return INVALID_ARGUMENT for a text of another form; NOT_SUPPORTED for two equal texts, and for a
 *         function that is neither GPU nor adapter
 */
LumoReturn lumoDeviceGetPciDeviceTopology(LumoDevice *device, const char *sbdf, const char *otherSbdf,
                                          int *level);

/**
 * The library's other devices at one level from a device, in the library's order.
 * @param level    0 to 5
 * @param capacity must be greater than the number of devices, or the list gives INSUFFICIENT_SIZE
 */
LumoReturn lumoDeviceCountDeviceByTopologyLevel(LumoDevice *device, unsigned level, unsigned *count);
LumoReturn lumoDeviceGetDeviceByTopologyLevel(LumoDevice *device, unsigned level, unsigned capacity,
                                              LumoDevice **devices);

/**
 * PCI addresses of the host's InfiniBand adapters; any device answers.
 * @param sbdfs `count` texts of `width` bytes each, one behind the other
 * @return INSUFFICIENT_SIZE for a width or count of 0 and for a width without room for a text, NOT_FOUND
 *         when there are more texts than `count`
 */
LumoReturn lumoDeviceCountPciNicDevices(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetPciNicDeviceSbdf(LumoDevice *device, char *sbdfs, unsigned width, unsigned count);

/**
 * Whether a device reaches the memory of another, as a LUMO_P2P_...; not of MPC instances. A device and
 * itself are LUMO_P2P_GPU_NOT_SUPPORTED.
 * @param capability 0 read, 1 write
 */
LumoReturn lumoDeviceGetP2PStatus(LumoDevice *device, LumoDevice *other, unsigned capability,
                                  unsigned *status);

/**
 * CPUs and NUMA node near to a device, as sysfs spells them: "0-15,32-47" and "0", "-1" on a machine
 * without nodes; 1024 bytes are enough for 512 CPUs. Of physical GPUs and MPC parents.
 */
LumoReturn lumoDeviceGetCpuAffinityStringWithinNode(LumoDevice *device, char *cpus, unsigned length);
LumoReturn lumoDeviceGetMemoryAffinityStringWithinNode(LumoDevice *device, char *nodes, unsigned length);

/**
 * The same as a mask, CPU or node n as bit n % 64 of word n / 64.
 * @param count words of the caller's buffer, at least 1
 * @return INSUFFICIENT_SIZE when the mask does not fit, UNKNOWN_ERROR for a text that is no list, as on a
 *         machine without nodes
 */
LumoReturn lumoDeviceGetCpuAffinityWithinNode(LumoDevice *device, unsigned long long *mask, unsigned count);
LumoReturn lumoDeviceGetMemoryAffinityWithinNode(LumoDevice *device, unsigned long long *mask,
                                                 unsigned count);

/**
 * The CPUs in the words of the kernel's own bitmask, which has the highest CPUs first: word n holds the
 * words 2n (low half) and 2n + 1 (high half) of sysfs as they stand. Codes as above.
 */
LumoReturn lumoDeviceGetCpuAffinityBitmaskWithinNode(LumoDevice *device, unsigned long long *words,
                                                     unsigned count);

/* ---- Device: processes ----------------------------------------------------------------------- */

typedef struct LumoProcessMemUsage {
  unsigned pid;                    /**< of the caller's namespace */
  unsigned kind;                   /**< 0 graphics, 1 compute */
  unsigned long long gpuMemory;    /**< bytes */
  unsigned long long systemMemory; /**< bytes held for the GPU */
  unsigned long long reserved;     /**< 0 */
} LumoProcessMemUsage;

/** One process's share of a GPU, in percent. */
typedef struct LumoProcessGpuUtilization {
  unsigned pid;
  unsigned kind;                /**< 0 graphics, 1 compute */
  unsigned long long timestamp; /**< of the last activity, nanoseconds of the monotonic clock */
  unsigned gpu;
  unsigned memory; /**< of the memory controller */
  unsigned encoder;
  unsigned decoder;
} LumoProcessGpuUtilization;

/** Processes that hold memory of the GPU, in ascending order of pid, of every device. */
LumoReturn lumoDeviceCountProcessMemoryUsages(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetProcessMemoryUsages(LumoDevice *device, LumoProcessMemUsage *usages,
                                            unsigned capacity);

/** Processes that use the GPU, in ascending order of pid, of every device. */
LumoReturn lumoDeviceCountProcessGpuUtilizations(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetProcessGpuUtilizations(LumoDevice *device, LumoProcessGpuUtilization *utilizations,
                                               unsigned capacity);

/* ---- Device: MPC ----------------------------------------------------------------------------- */

typedef struct LumoMpcProfile {
  unsigned id;
  unsigned coreCount;
  unsigned long long memory; /**< MiB */
  unsigned instances;        /**< 0 */
  unsigned reserved;         /**< 0 */
  char name[LUMO_MPC_PROFILE_NAME_SIZE];
} LumoMpcProfile;

/** A way to divide a GPU. */
typedef struct LumoMpcConfiguration {
  unsigned id;
  unsigned profileCount; /**< number of instances */
  char name[LUMO_MPC_CONFIGURATION_NAME_SIZE];
  unsigned profileIds[LUMO_MPC_MAX_INSTANCES]; /**< the profile of each */
} LumoMpcConfiguration;

/** 1 for MPC parents and instances, 0 for other GPUs that can be divided. */
LumoReturn lumoDeviceGetMpcMode(LumoDevice *device, unsigned *mode);

/**
 * Makes a GPU an MPC parent (1) or takes its instances away (0). Devices come and go with it: give every
 * handle of the library back and start it anew afterwards.
 */
LumoReturn lumoDeviceSetMpcMode(LumoDevice *device, unsigned mode);

/**
 * Replaces the instances of an MPC parent. Start the library anew afterwards, as with lumoDeviceSetMpcMode.
 * @param id of a supported configuration, else INVALID_ARGUMENT
 */
LumoReturn lumoDeviceSetMpcConfiguration(LumoDevice *device, unsigned id);

/** What an MPC parent can be divided into; MPC parents alone. */
LumoReturn lumoDeviceCountSupportedMpcProfiles(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetSupportedMpcProfiles(LumoDevice *device, LumoMpcProfile *profiles, unsigned capacity);
LumoReturn lumoDeviceCountSupportedMpcConfigurations(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetSupportedMpcConfigurations(LumoDevice *device, LumoMpcConfiguration *configurations,
                                                   unsigned capacity);

/** One supported configuration; MPC parents alone. @return NOT_FOUND for one that is not supported */
LumoReturn lumoDeviceGetMpcConfiguration(LumoDevice *device, unsigned id,
                                         LumoMpcConfiguration *configuration);
LumoReturn lumoDeviceGetMpcConfigurationByName(LumoDevice *device, const char *name,
                                               LumoMpcConfiguration *configuration);

/** MPC instances of an MPC parent, in ascending order of node number; MPC parents alone. */
LumoReturn lumoDeviceCountMpcInstances(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetMpcInstances(LumoDevice *device, LumoDevice **instances, unsigned capacity);

/** Those of one profile; MPC parents alone. */
LumoReturn lumoDeviceCountMpcInstanceByProfile(LumoDevice *device, unsigned profileId, unsigned *count);
LumoReturn lumoDeviceGetMpcInstanceByProfile(LumoDevice *device, unsigned profileId, LumoDevice **instances,
                                             unsigned capacity);

/** The GPU that an MPC instance is a part of; MPC instances alone. */
LumoReturn lumoDeviceGetMpcParentDevice(LumoDevice *device, LumoDevice **parent);

/** Place of an MPC instance in its parent, from 0; MPC instances alone. @return NOT_FOUND when the parent
 *  does not list it */
LumoReturn lumoDeviceGetMpcInstanceIndex(LumoDevice *device, unsigned *index);

/** Size of an MPC instance; MPC instances alone. */
LumoReturn lumoDeviceGetMpcProfileInfo(LumoDevice *device, LumoMpcProfile *profile);

/* ---- Device: Sablink, the links between GPUs --------------------------------------------------- */

/** States of a link; LUMO_SABLINK_DOWNGRADED carries traffic with fewer lanes or less speed. */
enum { LUMO_SABLINK_DOWN = 0, LUMO_SABLINK_UP = 1, LUMO_SABLINK_DOWNGRADED = 2 };

typedef struct LumoSablinkSpec {
  unsigned linkCount; /**< links are numbered from 0 */
  unsigned linkSpeed; /**< Mbit/s of one link and direction */
  unsigned version;   /**< times 100 */
} LumoSablinkSpec;

/** One direct link between two devices, by the link's number on each. */
typedef struct LumoSablinkLayout {
  unsigned localPort;
  unsigned remotePort;
} LumoSablinkLayout;

/** A way from one device to another, both included. */
typedef struct LumoSablinkPath {
  unsigned deviceCount;
  unsigned reserved;                           /**< 0 */
  LumoDevice *devices[LUMO_SABLINK_PATH_SIZE]; /**< null behind the last */
} LumoSablinkPath;

/** Traffic of a measurement. */
typedef struct LumoSablinkPerfData {
  unsigned long long rxBytes; /**< received since the start */
  unsigned long long txBytes;
  unsigned long long rxRate; /**< bytes/s over the last interval */
  unsigned long long txRate;
  unsigned samples;  /**< intervals since the start */
  unsigned reserved; /**< 0 */
} LumoSablinkPerfData;

typedef struct LumoSablinkLaneStatus {
  unsigned state;     /**< 0 down, 1 training, 2 locked */
  unsigned eyeWidth;  /**< thousandths of a unit interval */
  unsigned eyeHeight; /**< millivolts */
  unsigned bitErrors; /**< since training */
} LumoSablinkLaneStatus;

/** The lanes of a link. */
typedef struct LumoSablinkSerdesStatus {
  unsigned laneCount; /**< rows of `lanes` that hold something */
  LumoSablinkLaneStatus lanes[LUMO_SABLINK_LANES];
} LumoSablinkSerdesStatus;

/*
 * A device without the bit LUMO_PROPERTY_SABLINK_CAPABLE answers NOT_SUPPORTED to all of these. A `link`
 * at or past the link count is an INVALID_ARGUMENT.
 */

LumoReturn lumoDeviceGetSablinkSpec(LumoDevice *device, LumoSablinkSpec *spec);

/** One of LUMO_SABLINK_.... */
LumoReturn lumoDeviceGetSablinkState(LumoDevice *device, unsigned link, unsigned *state);

/**
 * 1 when the link has the capability, else 0; a link that is not up has none.
 * @param capability 0 access to the other's memory, 1 atomic access
 */
LumoReturn lumoDeviceGetSablinkCapStatus(LumoDevice *device, unsigned link, unsigned capability,
                                         unsigned *status);

/** @param kind 0 replay, 1 recovery, 2 framing, 3 FEC correction, 4 CRC, 5 receiver */
LumoReturn lumoDeviceGetSablinkErrorCounter(LumoDevice *device, unsigned link, unsigned kind,
                                            unsigned long long *count);
/** Sets all error counters of a link to 0. */
LumoReturn lumoDeviceResetSablinkErrorCounter(LumoDevice *device, unsigned link);

/**
 * The device and its link at the other end.
 * @return NOT_FOUND when the library has no such device, with lumoDeviceGetSablinkRemoteDevice
 */
LumoReturn lumoDeviceGetSablinkRemoteDevice(LumoDevice *device, unsigned link, LumoDevice **remote);
LumoReturn lumoDeviceGetSablinkRemoteLink(LumoDevice *device, unsigned link, unsigned *remoteLink);

/** Direct links between two devices; both must have Sablink ports. */
LumoReturn lumoDeviceCountSablinkLayouts(LumoDevice *device, LumoDevice *other, unsigned *count);
LumoReturn lumoDeviceGetSablinkLayouts(LumoDevice *device, LumoDevice *other, LumoSablinkLayout *layouts,
                                       unsigned capacity);

/**
 * All shortest ways from one device to another; both must have Sablink ports.
 * @return NOT_FOUND when a way leads over a device that the library does not have
 */
LumoReturn lumoDeviceCountSablinkShortestPaths(LumoDevice *device, LumoDevice *other, unsigned *count);
LumoReturn lumoDeviceGetSablinkShortestPaths(LumoDevice *device, LumoDevice *other, LumoSablinkPath *paths,
                                             unsigned capacity);

/**
 * Measures the traffic of a link: start, read as often as wanted, stop. All three, and the lanes, give
 * NOT_FOUND for a link that is not up.
 * @param session          number of the measurement
 * @param actualIntervalMs how often the driver takes its counters
 * @param samples          intervals taken in all
 */
LumoReturn lumoDeviceStartSablinkPerf(LumoDevice *device, unsigned link, unsigned *session,
                                      unsigned *actualIntervalMs);
LumoReturn lumoDeviceGetSablinkPerfData(LumoDevice *device, unsigned link, unsigned session,
                                        LumoSablinkPerfData *data);
LumoReturn lumoDeviceStopSablinkPerf(LumoDevice *device, unsigned link, unsigned session, unsigned *samples);
LumoReturn lumoDeviceGetSablinkSerdesStatus(LumoDevice *device, unsigned link,
                                            LumoSablinkSerdesStatus *status);

/* ---- Device: vGPUs --------------------------------------------------------------------------- */

/** A kind of vGPU that a GPU offers. */
typedef struct LumoVirtType {
  char id[LUMO_VIRT_TYPE_ID_SIZE];          /**< decimal number of the type */
  char deviceApi[LUMO_VIRT_TYPE_TEXT_SIZE]; /**< such as "vfio-pci" */
  char name[LUMO_VIRT_TYPE_TEXT_SIZE];
  unsigned long long maxWidth;     /**< pixels */
  unsigned long long maxHeight;    /**< pixels */
  unsigned long long maxEncode;    /**< encoder sessions */
  unsigned long long maxDecode;    /**< decoder sessions */
  unsigned long long framebuffer;  /**< MiB */
  unsigned long long maxInstances; /**< vGPUs of the type on one GPU */
  unsigned long long maxVirtualDisplay;
} LumoVirtType;

typedef struct LumoVgpuOverCommitInfo {
  unsigned enabled;      /**< 0 off, 1 on */
  unsigned systemMemory; /**< lent to the vGPU, MiB */
} LumoVgpuOverCommitInfo;

/*
 * Of physical GPUs and MPC parents that carry vGPUs.
 */

/** Types that the GPU offers, and those of which one more vGPU can be made. */
LumoReturn lumoDeviceCountSupportedVirtTypes(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetSupportedVirtTypes(LumoDevice *device, LumoVirtType *types, unsigned capacity);
LumoReturn lumoDeviceCountAvailableVirtTypes(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetAvailableVirtTypes(LumoDevice *device, LumoVirtType *types, unsigned capacity);

/**
 * The most vGPUs of a type that the GPU carries, and how many more of it can be made now.
 * @param typeId the `id` of a supported type, else NOT_FOUND
 */
LumoReturn lumoDeviceCountMaxVirtDevices(LumoDevice *device, const char *typeId, unsigned *count);
LumoReturn lumoDeviceCountAvailableVirtDevices(LumoDevice *device, const char *typeId, unsigned *count);

/**
 * Uuids of the vGPUs that exist on the GPU.
 * @param uuids `count` texts of `width` bytes each, one behind the other; cleared before they are read
 * @return INSUFFICIENT_SIZE for a width without room for a text, and for more texts than `count`
 */
LumoReturn lumoDeviceCountActiveVirtDevices(LumoDevice *device, unsigned *count);
LumoReturn lumoDeviceGetActiveVirtDeviceUuids(LumoDevice *device, char *uuids, unsigned width,
                                              unsigned count);

/**
 * One of these vGPUs, as a mediated device. The library keeps what it has learnt of a vGPU: one that is made
 * anew under the number of one that was removed is only found by a library that is started anew.
 * @return NOT_FOUND when the GPU has no such vGPU
 */
LumoReturn lumoDeviceInitVirtDevice(LumoDevice *device, const char *uuid, LumoDevice **virtDevice);

/*
 * Of mediated devices.
 */

LumoReturn lumoDeviceGetVirtType(LumoDevice *device, LumoVirtType *type);
/** Number of the vGPU, unique on its GPU. */
LumoReturn lumoDeviceGetVgpuId(LumoDevice *device, unsigned *vgpuId);
/** Process of the virtual machine that uses the vGPU, 0 while none does. */
LumoReturn lumoDeviceGetVmPid(LumoDevice *device, unsigned *pid);
LumoReturn lumoDeviceGetVgpuOverCommitInfo(LumoDevice *device, LumoVgpuOverCommitInfo *info);

/* ---- GPU ------------------------------------------------------------------------------------- */

/** Busy time in percent, 0 to 100, of every device. */
LumoReturn lumoGpuGetUtilization(LumoGpu *gpu, unsigned *utilization);

/** Busy time of a vGPU in percent, as its guest sees it: of mediated devices, physical GPUs and MPC
 *  instances. */
LumoReturn lumoGpuGetGuestUtilization(LumoGpu *gpu, unsigned *utilization);

/**
 * In percent, of physical GPUs and guests.
 * @param engine 0 graphics, 1 compute, 2 copy, 3 blit
 */
LumoReturn lumoGpuGetEngineUtilization(LumoGpu *gpu, unsigned engine, unsigned *utilization);

/** In percent, of every device. @param kind 0 mean over the cores, 1 busiest core */
LumoReturn lumoGpuGetCoreUtilization(LumoGpu *gpu, unsigned kind, unsigned *utilization);

/** Busy time of the memory controller in percent, of physical GPUs and MPC parents. */
LumoReturn lumoGpuGetMemoryControllerUtilization(LumoGpu *gpu, unsigned *utilization);

/** Whole degrees Celsius, of every device but guests. */
LumoReturn lumoGpuGetTemperature(LumoGpu *gpu, int *temperature);

/** The same of the family's first (0) or second (1) sensor; other numbers are NOT_SUPPORTED. */
LumoReturn lumoGpuGetSensorTemperature(LumoGpu *gpu, unsigned sensor, int *temperature);

/** The same of the hottest sensor, of physical GPUs and MPC parents from the Fen1 family on. */
LumoReturn lumoGpuGetMaxTemperature(LumoGpu *gpu, int *temperature);

/** Megahertz, of every device; the maximum of the model OVT B230E alone. */
LumoReturn lumoGpuGetClock(LumoGpu *gpu, unsigned *megahertz);
LumoReturn lumoGpuGetMaxClock(LumoGpu *gpu, unsigned *megahertz);

/**
 * Shader units of some cores; physical GPUs of the Tor1 family alone.
 * @param mask a bit per core; not 0, and none at or past the core count
 */
LumoReturn lumoGpuCountCoreMpx(LumoGpu *gpu, unsigned long long mask, unsigned *count);

/** How often and for how many milliseconds the GPU was slowed down by heat since boot; physical GPUs of the
 *  Tor1 family alone. */
LumoReturn lumoGpuGetThermalSlowdownStatistics(LumoGpu *gpu, unsigned *count, unsigned *totalTimeMs);

/** Resets the graphics and compute engine of a physical GPU. */
LumoReturn lumoGpuReset(LumoGpu *gpu);

/** Sets the counters of hardware errors of a physical GPU to 0. */
LumoReturn lumoGpuResetHwErrorCounts(LumoGpu *gpu);

/* ---- Memory ---------------------------------------------------------------------------------- */

/** Causes for which pages of memory are retired. */
enum { LUMO_RETIREMENT_SINGLE_BIT = 0, LUMO_RETIREMENT_DOUBLE_BIT = 1 };

/** A page of memory that was taken out of use. */
typedef struct LumoRetiredPage {
  unsigned long long address;   /**< bytes */
  unsigned long long timestamp; /**< of the retirement, seconds since the epoch */
  unsigned cause;               /**< LUMO_RETIREMENT_... */
  unsigned reserved;            /**< 0 */
  unsigned long long location;  /**< channel in bits 0 to 7, bank 8 to 15, row 16 to 47 */
  unsigned long long errorCount;
  unsigned long long reserved2[2]; /**< 0 */
} LumoRetiredPage;

/** Errors that the memory's own detection met, over all channels. */
typedef struct LumoMemoryEdcCounters {
  unsigned readErrors;
  unsigned writeErrors;
  unsigned readRetries;
  unsigned writeRetries;
} LumoMemoryEdcCounters;

/** Size of the memory in bytes, of every device. */
LumoReturn lumoMemoryGetTotal(LumoMemory *memory, unsigned long long *total);

/** Memory in use in bytes, of every device. */
LumoReturn lumoMemoryGetUsed(LumoMemory *memory, unsigned long long *used);

/** Memory in use in percent, of every device. @return UNKNOWN_ERROR when the size is 0 */
LumoReturn lumoMemoryGetUtilization(LumoMemory *memory, unsigned *utilization);

/** System memory that the device may use, in bytes; older drivers alone. */
LumoReturn lumoMemoryGetSystemTotal(LumoMemory *memory, unsigned long long *total);

/** Memory set aside for vGPUs, in bytes; older drivers alone. */
LumoReturn lumoMemoryGetGuestReserved(LumoMemory *memory, unsigned long long *reserved);

/** The same three of a vGPU, as its guest sees them; mediated devices alone. */
LumoReturn lumoMemoryGetGuestTotal(LumoMemory *memory, unsigned long long *total);
LumoReturn lumoMemoryGetGuestUsed(LumoMemory *memory, unsigned long long *used);
LumoReturn lumoMemoryGetGuestUtilization(LumoMemory *memory, unsigned *utilization);

/** Megahertz, of every device; the maximum of the model OVT B230E alone. */
LumoReturn lumoMemoryGetClock(LumoMemory *memory, unsigned *megahertz);
LumoReturn lumoMemoryGetMaxClock(LumoMemory *memory, unsigned *megahertz);

/** Width of the memory bus in bits, of every device. */
LumoReturn lumoMemoryGetBusWidth(LumoMemory *memory, unsigned *bits);
/** GB/s, of every device. */
LumoReturn lumoMemoryGetBandwidth(LumoMemory *memory, unsigned *bandwidth);
/** Millions of transfers per second, of every device. */
LumoReturn lumoMemoryGetSpeed(LumoMemory *memory, unsigned *speed);
/** Maker of the memory, of every device; 32 bytes hold it. */
LumoReturn lumoMemoryGetVendor(LumoMemory *memory, char *vendor, unsigned length);
/** 0 LPDDR4, 1 GDDR6, of every device. */
LumoReturn lumoMemoryGetType(LumoMemory *memory, unsigned *type);

/** Of every device. */
LumoReturn lumoMemoryGetEdcCounters(LumoMemory *memory, LumoMemoryEdcCounters *counters);

/*
 * Error correction: physical GPUs of the Tor1 family alone.
 */

/** Inline ECC now and after the next reset, 0 off and 1 on. */
LumoReturn lumoMemoryGetEccMode(LumoMemory *memory, unsigned *current, unsigned *pending);

/** Switches inline ECC on (1) or off (0), from the next reset on. */
LumoReturn lumoMemorySetEccMode(LumoMemory *memory, unsigned mode);

/** Retired pages, by cause. */
LumoReturn lumoMemoryGetRetiredPagesCount(LumoMemory *memory, unsigned *singleBit, unsigned *doubleBit);

/**
 * The retired pages of one cause.
 * @param cause LUMO_RETIREMENT_...
 * @param pages buffer of `count` records, at least one; cleared before they are read, also on a failure
 * @return INSUFFICIENT_SIZE when there are more pages than `count`
 */
LumoReturn lumoMemoryGetRetiredPages(LumoMemory *memory, unsigned cause, unsigned count,
                                     LumoRetiredPage *pages);

/** 1 when pages wait for the next reset to be retired, else 0. */
LumoReturn lumoMemoryGetRetiredPagesPendingStatus(LumoMemory *memory, unsigned *pending);

/**
 * @param errorType   0 corrected, 1 not correctable
 * @param counterType 1 inline ECC of the memory
 * @param location    0 since the driver was loaded, 1 ever
 */
LumoReturn lumoMemoryGetEccErrorCounter(LumoMemory *memory, unsigned errorType, unsigned counterType,
                                        unsigned location, unsigned long long *count);

/** Sets these counters to 0: 0 those since the driver was loaded, 1 those ever. */
LumoReturn lumoMemoryClearEccErrorCounter(LumoMemory *memory, unsigned location);

/* ---- VPU, the video engine ------------------------------------------------------------------- */

/** Busy time in percent: mean over all cores, over the encoders and over the decoders. */
typedef struct LumoVpuUtilization {
  unsigned total;
  unsigned encoder; /**< 0 without encoders */
  unsigned decoder; /**< 0 without decoders */
} LumoVpuUtilization;

/** States of a session slot; LUMO_NOT_AVAILABLE where there is no slot. */
enum { LUMO_VPU_SESSION_IDLE = 0, LUMO_VPU_SESSION_ACTIVE = 1 };

/** What a session works on. */
typedef struct LumoVpuSessionMetrics {
  unsigned state; /**< LUMO_VPU_SESSION_... */
  unsigned pid;
  unsigned codec; /**< 0 AVC, 1 VC1, 2 MPEG2, 3 MPEG4, 4 H263, 5 DIV3, 6 RV, 7 AVS, 8 and 15 reserved, 9 THO,
                       10 VP3, 11 VP8, 12 HEVC, 13 VP9, 14 AVS2, 16 AV1 */
  unsigned hRes;  /**< pixels */
  unsigned vRes;  /**< pixels */
  unsigned fps;   /**< frames/s */
  unsigned bitrate; /**< kbit/s */
  unsigned sessionId;
} LumoVpuSessionMetrics;

/** Of every device but MPC parents. */
LumoReturn lumoVpuGetUtilization(LumoVpu *vpu, LumoVpuUtilization *utilization);

/** Megahertz, of every device but MPC parents; the maximum of the model OVT B230E alone. */
LumoReturn lumoVpuGetClock(LumoVpu *vpu, unsigned *megahertz);
LumoReturn lumoVpuGetMaxClock(LumoVpu *vpu, unsigned *megahertz);

/** Sessions that can run at the same time, of every device but MPC parents. */
LumoReturn lumoVpuGetCodecCapacity(LumoVpu *vpu, unsigned *encode, unsigned *decode);

/**
 * State of every session slot, by session id, of every device but MPC parents and of mediated devices. No
 * device has more than 576 slots.
 * @param count of the buffer, else INSUFFICIENT_SIZE for 0. A shorter buffer gets the first states, and a
 *              longer one LUMO_NOT_AVAILABLE behind the last.
 */
LumoReturn lumoVpuGetEncoderSessionStates(LumoVpu *vpu, unsigned *states, unsigned count);
LumoReturn lumoVpuGetDecoderSessionStates(LumoVpu *vpu, unsigned *states, unsigned count);

/** @param sessionId place of the session in the list of states; INVALID_ARGUMENT past its end */
LumoReturn lumoVpuGetEncoderSessionMetrics(LumoVpu *vpu, unsigned sessionId, LumoVpuSessionMetrics *metrics);
LumoReturn lumoVpuGetDecoderSessionMetrics(LumoVpu *vpu, unsigned sessionId, LumoVpuSessionMetrics *metrics);

/* ---- Events ---------------------------------------------------------------------------------- */

/** Kinds of event, a bit each. */
enum { LUMO_EVENT_XID = 1 };

/** A fault, as the driver wrote it down. */
typedef struct LumoXidRecord {
  unsigned version; /**< 1 */
  unsigned xid;
  unsigned long long attributes; /**< bits 0 to 2 scope, 3 to 5 severity */
  unsigned long long timestamp;  /**< seconds since the epoch */
  unsigned long long reserved;
  unsigned long long pid;                    /**< 0 for a fault without a process */
  char additional[LUMO_XID_ADDITIONAL_SIZE]; /**< may fill the field without a NUL */
} LumoXidRecord;

typedef struct LumoEventData {
  unsigned deviceIndex;         /**< all ones when the GPU is gone */
  unsigned reserved;            /**< 0 */
  unsigned long long eventType; /**< LUMO_EVENT_... */
  char uuid[LUMO_UUID_SIZE];
  LumoXidRecord record;
} LumoEventData;

/** Mask of the events that a device reports, mediated ones too: 0 for all but physical GPUs. */
LumoReturn lumoDeviceGetSupportedEventTypes(LumoDevice *device, unsigned long long *types);

/**
 * The newest stored events of a device, or of a GPU that may have been removed since, newest first.
 * @param eventType LUMO_EVENT_XID, else NOT_SUPPORTED
 * @param capacity  how many are wanted
 * @param count     how many were written
 * @return UNKNOWN_ERROR when nothing is stored, or it cannot be read
 */
LumoReturn lumoDeviceGetEventDataByEventType(LumoDevice *device, unsigned long long eventType,
                                             LumoEventData *events, unsigned capacity, unsigned *count);
LumoReturn lumoGetTargetUuidEventDataByEventType(const char *uuid, unsigned long long eventType,
                                                 LumoEventData *events, unsigned capacity, unsigned *count);

/*
 * Faults as they happen. An event object listens to the devices that are registered with it, each with the
 * types that are wanted, and a wait gives one event after the other:
 *
 *   lumoEventCreate(&event);
 *   lumoEventRegister(event, device, LUMO_EVENT_XID);
 *   while (lumoEventWait(event, 1000, &data) == LUMO_RETURN_SUCCESS) { ... }
 *
 * An object belongs to one thread at a time. What happened before it was made is left out, to the second. Of
 * a device the driver keeps the last 64 events that nobody has read. Objects that are left end with the
 * library.
 */

/** @return UNKNOWN_ERROR while the library is not started */
LumoReturn lumoEventCreate(LumoEvent **event);

/** @return INVALID_ARGUMENT for an object that is not there any more, here and below */
LumoReturn lumoEventDestroy(LumoEvent *event);

/**
 * Listens to a device, or changes the types that are listened to.
 * @param eventTypes LUMO_EVENT_..., or several
 * @return NOT_SUPPORTED when the device reports none of these types; NOT_FOUND when the driver has no event
 *         file for it; UNKNOWN_ERROR when that cannot be opened
 */
LumoReturn lumoEventRegister(LumoEvent *event, LumoDevice *device, unsigned long long eventTypes);

/**
 * Waits for an event. Signals do not end the wait.
 * @param data its `uuid` is 32 hexadecimal digits without hyphens, as the driver sends it
 * @return DRIVER_ACCESS_FAILED when none came in time; INVALID_ARGUMENT also for one in a version that this
 *         library does not know
 */
LumoReturn lumoEventWait(LumoEvent *event, unsigned timeoutMs, LumoEventData *data);

/* ---- Performance sampling -------------------------------------------------------------------- */

/*
 * Sample a device's counters over an interval: start, take a sample, take a second one, compute metrics of
 * the two, stop. No device has counters that the library reads yet: where a device can be sampled, start,
 * stop and sample are NOT_SUPPORTED, and metrics are left as they were.
 */

/** Counters at one moment. Made and freed by the library alone. */
typedef struct LumoPfmSample {
  void *counters;              /**< null until a sample was taken */
  unsigned long long deviceId; /**< lumoDeviceGetIntId of the device */
} LumoPfmSample;

typedef struct LumoPfmMetric {
  unsigned id;
  unsigned unit;
  unsigned long long value;
  unsigned long long reserved[3];
} LumoPfmMetric;

typedef struct LumoPfmMetricsRequest {
  LumoPfmSample *sample1;
  unsigned count; /**< metrics wanted, 1 to LUMO_PFM_MAX_METRICS */
  LumoPfmSample *sample2;
  LumoPfmMetric metrics[LUMO_PFM_MAX_METRICS];
} LumoPfmMetricsRequest;

/** 1 when the device can be sampled, else 0: physical GPUs of the Fen2 family and later. */
LumoReturn lumoDeviceIsPfmSupported(LumoDevice *device, unsigned *supported);

/** @param mode 0 or 1 */
LumoReturn lumoDeviceStartPfm(LumoDevice *device, unsigned mode);
LumoReturn lumoDeviceStopPfm(LumoDevice *device);

/**
 * Makes and frees a sample. Samples that are left are freed with the library.
 * @return UNKNOWN_ERROR while the library is not started; INVALID_ARGUMENT for a sample that it did not make
 */
LumoReturn lumoPfmSampleAlloc(LumoPfmSample **sample);
LumoReturn lumoPfmSampleFree(LumoPfmSample *sample);

/** @return INVALID_ARGUMENT for a sample that the library did not make */
LumoReturn lumoPfmSampleGet(LumoDevice *device, LumoPfmSample *sample);

/**
 * @return INVALID_ARGUMENT unless the two are different samples of one device that were taken;
 *         INSUFFICIENT_SIZE for a count above LUMO_PFM_MAX_METRICS
 */
LumoReturn lumoPfmMetricsGet(LumoPfmMetricsRequest *request);

#ifdef __cplusplus
}
#endif

#endif
