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
  size_t owner;   // index of the misc node of the device
  CellMap cells;  // of misc nodes alone
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

struct PciFunction {
  std::string address;                // DDDD:BB:DD.F
  std::vector<std::string> upstream;  // folder names from the host bridge down, "pciDDDD:BB" first
  uint16_t vendorId = 0x4F56;
  uint16_t deviceId = 0;
  uint16_t subsystemVendorId = 0x4F56;
  uint16_t subsystemDeviceId = 0;
  uint8_t revision = 0;
  uint32_t classCode = 0;
  Link current;
  Link highest;
  std::array<std::optional<Bar>, 6> bars;
  bool hasPcieCapability = true;
  int numaNode = 0;
  std::string cpus;
  bool isVirtualFunction = false;
  std::vector<uint32_t> miscIds;  // the device's own one first
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
  std::optional<int64_t> time;
  std::vector<ListedInterface> listed;
  std::vector<ListedInterface> renderListed;
  std::vector<PciFunction> functions;
  std::vector<Node> nodes;
  std::map<std::string, std::optional<std::string>> files;  // a path that ends in "/" is a folder
  std::map<std::string, std::string> links;
  std::map<uint64_t, std::string> processes;                             // pid to the bytes of its cmdline
  std::vector<uint64_t> unknownPids;                                     // named by a GPU and not described
  std::map<std::string, std::map<std::string, PackageAnswer>> packages;  // by tool and package
  std::vector<std::string> faults;
};

#endif
