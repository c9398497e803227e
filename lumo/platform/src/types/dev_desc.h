#pragma once

#include <cstdint>
#include <string>

#include "kelp_return.h"

namespace kelp {

/// The fixed description of one device node set, from the driver or, with an older one, from sysfs.
struct DevDesc {
  std::string uuid;                ///< 8-4-4-4-12 form; empty in a guest
  std::string sbdf;                ///< PCI address as sysfs spells it
  std::uint32_t parentMiscId = 0;  ///< misc number of an MPC instance's parent, else 0
  Stated<bool> kmdFlagA;           ///< the device can be switched into MPC mode
  Stated<bool> kmdFlagB;           ///< the device has Sablink ports
  Stated<unsigned int> kmdValue32;   ///< number of GPU cores
  Stated<unsigned long> kmdValue64;  ///< mask of usable GPU cores
  Stated<std::string> miscPath;    ///< "/dev/ovgpu.N"
  Stated<std::string> cardPath;    ///< "/dev/dri/cardN"
  Stated<std::string> renderPath;  ///< "/dev/dri/renderDN"
  Stated<std::string> ionPath;     ///< "/dev/ionN"
  Stated<std::wstring> wideName;   ///< no driver delivers one
};

}  // namespace kelp
