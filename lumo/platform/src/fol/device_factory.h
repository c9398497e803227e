#pragma once

#include <memory>
#include <span>

#include "dev_cuid.h"
#include "features.h"
#include "kelp_return.h"

namespace kelp {

class DeviceObj;
class ModelManager;

/// Makes the device objects of one chip family. Holds nothing: one is made for each call.
class DeviceFactory {
 public:
  virtual ~DeviceFactory() = default;

  /// State 1 for a device of another family, and for a type that the family does not have.
  virtual Stated<std::shared_ptr<DeviceObj>> createDevice(const DevCuid& cuid,
                                                          std::shared_ptr<ModelManager> modelManager) = 0;
};

/// Makes a device object that is not initialised yet.
using DeviceMaker = std::shared_ptr<DeviceObj> (*)(const DevCuid& cuid,
                                                   std::shared_ptr<ModelManager> modelManager,
                                                   FeatureRow features);

template <class Device>
std::shared_ptr<DeviceObj> makeDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
                                      FeatureRow features) {
  return std::make_shared<Device>(cuid, std::move(modelManager), features);
}

/// One kind of device of a family: how it behaves, and what it can do.
struct DeviceRow {
  DevType type;
  DeviceMaker make;
  FeatureRow features;
};

/// Makes a device object from the table of the family `arch`.
Stated<std::shared_ptr<DeviceObj>> createDeviceOf(DevArch arch, std::span<const DeviceRow> rows,
                                                  const DevCuid& cuid,
                                                  std::shared_ptr<ModelManager> modelManager);

}  // namespace kelp
