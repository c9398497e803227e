#pragma once

#include <lumo.h>

namespace tolk_test {

/// Handles of one device and its parts, and of another device for what is asked of two. Goes where a
/// function of the library takes any of these handles.
struct Subject {
  LumoDevice* device = nullptr;
  LumoGpu* gpu = nullptr;
  LumoMemory* memory = nullptr;
  LumoVpu* vpu = nullptr;
  LumoDevice* other = nullptr;

  operator LumoDevice*() const { return device; }
  operator LumoGpu*() const { return gpu; }
  operator LumoMemory*() const { return memory; }
  operator LumoVpu*() const { return vpu; }

  /// The parts of a device; null ones where there is no device.
  static Subject of(LumoDevice* device, LumoDevice* other = nullptr) {
    Subject made;
    made.device = device;
    made.other = other != nullptr ? other : device;
    lumoDeviceInitGpu(device, &made.gpu);
    lumoDeviceInitMemory(device, &made.memory);
    lumoDeviceInitVpu(device, &made.vpu);
    return made;
  }
};

}  // namespace tolk_test
