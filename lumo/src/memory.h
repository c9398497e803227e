#pragma once

#include "component.h"
#include "device.h"
#include "ecc_values.h"
#include "memory_values.h"

namespace lumo {

/// The memory of a device.
class Memory : public Component<unsigned int, Device> {
 public:
  using Component::Component;

  /// Bytes.
  virtual unsigned long getTotal(LumoReturn* status) const;
  virtual unsigned long getUsed(LumoReturn* status) const;
  virtual kelp::EccModeInfo getEccMode(LumoReturn* status) const;
};

}  // namespace lumo
