#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "command_access/lumo_access/lumo_access_device.h"
#include "common_define.h"

namespace tolk {

/// Puts the devices 0 to `count` - 1 in display order: each MPC parent is followed by its instances,
/// whatever order the library has them in. An instance whose parent cannot be read comes first of all,
/// and a device of unknown type is left out. False when a device cannot be had or read.
template <class Factory>
bool getReorderIndices(std::uint32_t count, std::vector<std::uint32_t>& indices, const Factory& factory) {
  std::vector<std::uint32_t> ordered;
  std::vector<std::uint32_t> orphans;
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto device = factory.getAccessDeviceById(index);
    if (!device) {
      TOLK_LOG(kError) << "get device error, index = " << index;
      return false;
    }
    DeviceType type{};
    if (device->devGetDeviceType(type) != LUMO_RETURN_SUCCESS) return false;

    if (type == DeviceType::kVirtual || type == DeviceType::kPhysical) {
      ordered.push_back(index);
    } else if (type == DeviceType::kMpcParent) {
      std::vector<MpcInstance> instances;
      if (device->getMpcInstances(instances) != LUMO_RETURN_SUCCESS) return false;
      std::ranges::sort(instances, {}, &MpcInstance::deviceIndex);
      ordered.push_back(index);
      for (const auto& instance : instances) ordered.push_back(instance.deviceIndex);
    } else if (type == DeviceType::kMpcInstance) {
      std::uint32_t parent = 0;
      if (device->getParentDeviceIndex(parent) != LUMO_RETURN_SUCCESS) orphans.push_back(index);
    } else {
      TOLK_LOG(kInfo) << "Do nothing for other types of device, index = " << index;
    }
  }
  indices = std::move(orphans);
  indices.insert(indices.end(), ordered.begin(), ordered.end());
  return true;
}

}  // namespace tolk
