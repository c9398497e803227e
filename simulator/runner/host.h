// A simulated host, read and checked, as the writers of image and tree take it. Owned by main; plain data.
#ifndef HOST_H
#define HOST_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "families.h"
#include "sim_image.h"

/// One value of a device, or what happens instead when it is asked for.
struct Cell {
  SimCellKind kind = SIM_CELL_NUMBER;
  uint64_t number = 0;
  std::string blob = {};         // SIM_CELL_BLOB; an array as little-endian u32s
  std::vector<Cell> steps = {};  // SIM_CELL_STEPS
  bool cycle = false;
};

/// By value and key, in the order that the image wants.
using CellMap = std::map<std::pair<uint16_t, uint64_t>, Cell>;

struct Node {
  SimNodeKind kind;
  uint32_t number;
  size_t owner;         // index of the misc node of the device
  size_t gpu;           // index of the function
  CellMap cells;        // of misc nodes alone
  bool present = true;  // false: it belongs to a state of the MPC mode that is not the current one
};

/// What a misc node is in one state of its GPU's MPC mode. The device's graphics nodes come and go with it
/// where there are any in `graphics`.
struct Face {
  size_t gpu;
  uint32_t state;  // as SimGpu.mpcState
  size_t node;
  SimNodeKind kind;
  CellMap cells;
  std::vector<size_t> graphics;
};

struct Bar {
  uint64_t size = 0;
  uint64_t base = 0;
  bool prefetchable = false;
  bool is64 = false;
};

struct Link {
  double speed = 0;  // GT/s
  uint32_t width = 0;
};

/// Where something is on the bus.
struct PciPlace {
  std::string address;                // DDDD:BB:DD.F
  std::vector<std::string> upstream;  // folder names from the host bridge down, "pciDDDD:BB" first
  int numaNode = 0;
  std::string cpus;
};

struct PciIdentity {
  uint16_t vendorId = 0;
  uint16_t deviceId = 0;
  uint32_t classCode = 0;
};

/// What a host says of a bridge beyond its being there.
struct Bridge {
  std::optional<uint16_t> vendorId;
  std::optional<uint16_t> deviceId;
  std::optional<uint32_t> classCode;
  std::optional<int> numaNode;
  std::optional<std::string> cpus;
};

/// A network adapter.
struct Adapter {
  PciPlace place;
  PciIdentity identity;
  std::optional<std::string> name;  // below /sys/class/infiniband; none: it is not there
};

/// A type of vGPU that a function offers.
struct VgpuType {
  uint64_t id = 0;
  std::string name;
  std::string deviceApi;
  std::string maxResolution;
  uint64_t maxEncodeNum = 0;
  uint64_t maxDecodeNum = 0;
  uint64_t framebuffer = 0;  // MiB
  uint64_t maxInstances = 0;
  uint64_t maxVirtualDisplay = 0;
  std::optional<uint64_t> available;       // without it: what the vGPUs leave
  std::optional<std::string> description;  // instead of the line of all these
};

struct Vgpu {
  std::string uuid;
  uint64_t type = 0;
  int64_t id = 0;
  uint64_t vmPid = 0;
};

struct PciFunction {
  PciPlace place;
  PciIdentity identity{0x4F56, 0, 0};
  uint16_t subsystemVendorId = 0x4F56;
  uint16_t subsystemDeviceId = 0;
  uint8_t revision = 0;
  Link current;
  Link highest;
  std::array<std::optional<Bar>, 6> bars;
  bool hasPcieCapability = true;
  bool isVirtualFunction = false;
  std::optional<std::vector<VgpuType>> vgpuTypes;  // none: it cannot carry vGPUs
  std::vector<Vgpu> vgpus;
  std::optional<std::string> guestInfo;  // of a guest's share: its line
  std::string uuid;                      // of its own device
  std::string events;                    // messages that wait for who opens the event queue
  uint32_t mpcState = SIM_MPC_OFF;
  size_t ownNode = 0;  // index of its own misc node
  Family family = Family::kTor1;
  std::vector<uint32_t> miscIds;  // those that are there now, its own one first
  std::vector<uint32_t> cardIds;
  std::vector<uint32_t> renderIds;
};

struct ListedInterface {
  uint32_t name;
  uint16_t minVersion;
  uint16_t maxVersion;
};

struct PackageAnswer {
  std::string text;
  int status = 0;
};

struct Host {
  std::string name;  // for messages: the file it was read from
  uint64_t hash = 0;
  bool loaded = true;
  bool vpu = true;
  std::string driverMode = "-1";
  std::optional<std::string> driverVersion = "3.1.0";
  SimProtocol protocol = SIM_PROTOCOL_1;
  uint16_t currentMajor = 1;
  uint16_t currentMinor = 1;
  SimProtocol renderProtocol = SIM_PROTOCOL_0;
  uint32_t busyAttempts = 0;  // of a command to the firmware, before one that is answered
  bool busyAgain = false;     // before every one, and not only before the first
  std::optional<int64_t> time;
  std::vector<ListedInterface> listed;
  std::vector<ListedInterface> renderListed;
  std::vector<PciFunction> functions;
  std::vector<Node> nodes;
  std::vector<Face> faces;  // of GPUs whose MPC mode can change
  std::vector<Adapter> adapters;
  std::map<std::string, Bridge> bridges;                    // by address
  std::map<std::string, std::string> faultRecords;          // by uuid, the whole file
  std::map<std::string, std::optional<std::string>> files;  // a path that ends in "/" is a folder
  std::map<std::string, std::string> links;
  std::map<uint64_t, std::string> processes;                             // pid to the bytes of its cmdline
  std::vector<uint64_t> unknownPids;                                     // named by a GPU and not described
  std::map<std::string, std::map<std::string, PackageAnswer>> packages;  // by tool and package
  std::vector<std::string> faults;
};

#endif
