#pragma once

#include "device_object.h"
#include "feature_makers.h"

namespace kelp {

/// One part of a GPU that is divided by MPC.
class MpcInstanceDevice : public DeviceObj {
 public:
  MpcInstanceDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
                    FeatureRow features = feature::kMpcInstanceDevice)
      : DeviceObj(cuid, std::move(modelManager), features) {}

  /// State 7 when the GPU is not among those that are there.
  Stated<DevCuid> getMpcParentCuid() const override;
};

}  // namespace kelp
