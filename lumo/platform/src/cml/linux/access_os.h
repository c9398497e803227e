#pragma once

#include <string>

#include "dev_desc.h"
#include "kelp_return.h"

namespace kelp::linux_ {

/// What sysfs and /dev alone tell of a device, for drivers that do not tell it themselves. Nothing is
/// kept between calls. The functions may run on any thread.
class AccessOs {
 public:
  /// Address of the function that a misc node belongs to, as sysfs spells it; empty when there is none.
  /// Walks the driver's folder and the misc folder of each function before the one that is found.
  static std::string getPciBdfFromSysfs(const std::string& miscName);

  /// The function's DRM node of a kind, "/dev/dri/card0" for the prefix "card". State 1 when it has none.
  static Stated<std::string> getDrmDevPath(const std::string& sbdf, const std::string& prefix);

  /// Description of the device of a misc node. uuid, core count and core mask are left to the caller;
  /// state 1 when an address or a DRM node is missing.
  static Stated<DevDesc> getDeviceDescFromOs(const std::string& miscName);

  /// Whether the video engine is switched on and its driver loaded. State 8 when the module's parameter
  /// cannot be read.
  static Stated<bool> isVpuEnable();
};

}  // namespace kelp::linux_
