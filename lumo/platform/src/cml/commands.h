#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "board_values.h"
#include "dev_desc.h"
#include "gpu_values.h"
#include "memory_values.h"
#include "mpc_values.h"
#include "pcie_values.h"
#include "vpu_values.h"

namespace kelp {

/// Processes of a device by pid.
using ProcessMemoryMap = std::map<std::uint32_t, ProcessMemoryUsage>;

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

}  // namespace kelp
