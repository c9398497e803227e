#pragma once

#include "device_object.h"
#include "feature_makers.h"

namespace kelp {

/// A GPU that is divided into MPC instances.
class MpcParentDevice : public DeviceObj {
 public:
  MpcParentDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
                  FeatureRow features = feature::kMpcParentDevice)
      : DeviceObj(cuid, std::move(modelManager), features) {}

  Stated<std::vector<DevCuid>> getMpcInstCuids() const override;
};

}  // namespace kelp
