#pragma once

#include "dev_cuid.h"
#include "dev_desc.h"
#include "kelp_return.h"

namespace kelp {

/// The door to one device's nodes, as the core model knows it.
class AccessPointBase {
 public:
  virtual ~AccessPointBase() = default;

  virtual const DevCuid& getCuid() const = 0;
  /// State 6 until `init` has succeeded.
  virtual const Stated<DevDesc>& getDevDesc() const = 0;
  /// Opens the nodes, negotiates with the driver and reads the description. Runs once: a second call
  /// after a success does nothing, one after a failure tries again.
  virtual Done init() = 0;
};

}  // namespace kelp
