#pragma once

#include "device_object.h"
#include "feature_makers.h"

namespace kelp {

/// A GPU as a whole.
class PhysicalDevice : public DeviceObj {
 public:
  PhysicalDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
                 FeatureRow features = feature::kPhysicalDevice)
      : DeviceObj(cuid, std::move(modelManager), features) {}
};

}  // namespace kelp
