#pragma once

#include "device_object.h"
#include "feature_makers.h"

namespace kelp {

/// A GPU as a virtual machine sees it.
class GuestDevice : public DeviceObj {
 public:
  GuestDevice(const DevCuid& cuid, std::shared_ptr<ModelManager> modelManager,
              FeatureRow features = feature::kGuestDevice)
      : DeviceObj(cuid, std::move(modelManager), features) {}

  /// "OV vGPU ", the model without its prefix, "-" and the vGPU type.
  Stated<std::string> getDeviceName() const override;
};

}  // namespace kelp
