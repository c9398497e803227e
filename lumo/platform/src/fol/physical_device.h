#pragma once

#include "device_object.h"

namespace kelp {

/// A GPU as a whole.
class PhysicalDevice : public DeviceObj {
 public:
  PhysicalDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager, FeatureRow features)
      : DeviceObj(cuid, std::move(modelManager), features) {}
};

}  // namespace kelp
