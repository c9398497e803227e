#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "board_values.h"
#include "dev_desc.h"
#include "disp_values.h"
#include "ecc_values.h"
#include "gpu_values.h"
#include "memory_values.h"
#include "mpc_values.h"
#include "pcie_values.h"
#include "sablink_values.h"
#include "topology_values.h"
#include "virtual_values.h"
#include "vpu_values.h"

namespace kelp {

/// Base of a command that is one call of one interface of the kernel driver.
template <class R, class... Params>
struct ForwardCmd {
  using Result = R;
  std::tuple<Params...> params;

  explicit ForwardCmd(Params... values) : params(std::move(values)...) {}
};

// One command per interface: QueryGpuStatusCmd, QueryTemperCmd{{.sensorId = 9}} and so on.
#define MISC_INTERFACE(number, name, ...)       \
  struct name##Cmd : ForwardCmd<__VA_ARGS__> {  \
    using ForwardCmd<__VA_ARGS__>::ForwardCmd;  \
  };
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

#define RENDER_INTERFACE(number, name, slot, ...) \
  struct name##Cmd : ForwardCmd<__VA_ARGS__> {    \
    using ForwardCmd<__VA_ARGS__>::ForwardCmd;    \
  };
#include "common/mkis/render_interfaces.def"
#undef RENDER_INTERFACE

/// PCI facts, from the driver or else from sysfs.
struct QueryPcieInfoCmd {
  using Result = PcieInfo;
};

/// The identity burnt into the chip, decoded by chip family.
struct QueryEfuseCmd {
  using Result = Efuse;
};

/// CPUs or memory of the device's NUMA node, as sysfs spells them.
struct QueryAffinityWithinNodeCmd {
  using Result = std::string;
  AffinityType type = AffinityType::kCpuList;
};

// What the host's mediated device framework says. Asked of the GPU that carries vGPUs:

/// Every type that the GPU offers; empty for a GPU that carries none.
struct QuerySupportedVirtTypesCmd {
  using Result = std::vector<MdevVirtType>;
};

/// The types of which one more vGPU can be made.
struct QueryAvailableVirtTypesCmd {
  using Result = std::vector<MdevVirtType>;
};

/// How many more vGPUs of a type, named by its id, can be made.
struct QueryAvailableVirtInstancesCmd {
  using Result = unsigned int;
  std::string typeId;
};

/// The vGPUs that exist on the GPU.
struct QueryActiveVirtUuidsCmd {
  using Result = std::vector<std::string>;
};

// Asked of a mediated device:

struct QueryVirtTypeCmd {
  using Result = MdevVirtType;
};

/// Number of the vGPU, unique on its GPU.
struct QueryVgpuIdCmd {
  using Result = unsigned int;
};

/// Process of the virtual machine that uses the vGPU, 0 while none does.
struct QueryVmPidCmd {
  using Result = unsigned int;
};

}  // namespace kelp
