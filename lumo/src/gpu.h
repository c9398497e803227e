#pragma once

#include "component.h"
#include "device.h"

namespace lumo {

/// The graphics and compute engine of a device.
class Gpu : public Component<unsigned int, Device> {
 public:
  using Component::Component;

  /// Percent.
  virtual unsigned int getUtilization(LumoReturn* status) const;
  /// Degrees Celsius, the fraction cut off.
  virtual int getTemperature(LumoReturn* status) const;
};

}  // namespace lumo
